#pragma once

#include "testsuites/test_result.h"

#include <QListWidget>

#include <vector>

namespace busquill {

/// The tests of a run: identifier, title over as many lines as it needs, and result.
class CResultList final : public QListWidget {
    Q_OBJECT
public:
    explicit CResultList(QWidget* parent);

    void Clear();
    /// Adds a test at the end and selects it.
    void Append(const CTestResult& test);
    /// Replaces the last test.
    void ReplaceLast(const CTestResult& test);
    [[nodiscard]] const CTestResult& Test(int row) const {
        return tests_[static_cast<std::size_t>(row)];
    }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    class Painter;

    std::vector<CTestResult> tests_;
};

} // namespace busquill
