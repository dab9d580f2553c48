#pragma once

#include "ui/framework/feature.h"
#include "ui/framework/go_stop_child.h"

class QComboBox;
class QLabel;

namespace busquill {

class CPerformanceDoc;
class CPerformanceView;

/// The window of a measurement. Its bar chooses the setup and the numbers that are shown, and
/// counts the results.
class CPerformanceChild final : public CGoStopChild {
    Q_OBJECT
public:
    CPerformanceChild(const FeatureParts& parts, CPerformanceDoc& document);

private:
    void MakeBar();
    void FillSetups();
    void SetupChosen(const std::string& name);
    /// Opens the dialog. With a name, the setup of that name is loaded into it first.
    void EditSetup(const std::string& nameToLoad);
    void ShowCount(std::int64_t count);

    const FeatureParts parts_;
    CPerformanceDoc& document_;
    CPerformanceView* view_;
    QComboBox* setups_;
    QComboBox* display_;
    QLabel* count_;
};

} // namespace busquill
