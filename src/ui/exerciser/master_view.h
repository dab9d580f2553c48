#pragma once

#include "exerciser/master_run.h"
#include "ui/exerciser/exerciser_view.h"

class QListWidget;

namespace busquill {

class CMasterDoc;

/// One transaction of the board as a bus master: its form, the outcome of each step, and what was
/// read.
class CMasterView final : public ExerciserView, private MasterObserver {
    Q_OBJECT
public:
    CMasterView(const Parts& parts, CMasterDoc& document);

    void Go() { run_.Go(); }
    void Stop() { run_.Stop(); }
    void FollowBoard() override;

protected:
    void LayOut() override;

private:
    void OnRunning(bool running) override { emit RunningChanged(running); }
    void OnMemoryChanged() override;
    void OnStatusCleared() override;
    void OnStatus(std::span<const std::string_view> lines) override;
    void OnStepStarted() override;

    void MakeFields();
    void EditOptions();

    CMasterDoc& document_;
    QWidget* space_ = nullptr; // or the modifier, which stands in its place
    QWidget* modifier_ = nullptr;
    QWidget* addressSize_ = nullptr;
    QWidget* addressStart_ = nullptr;
    QWidget* addressEnd_ = nullptr;
    QWidget* dataSize_ = nullptr;
    QWidget* dataCycle_ = nullptr;
    QWidget* dataType_ = nullptr;
    QWidget* dataValue_ = nullptr;
    QWidget* dataFile_ = nullptr;
    std::vector<QWidget*> attributes_;
    QWidget* command_ = nullptr;
    QLineEdit* repeat_ = nullptr;
    QListWidget* status_;
    MasterRun run_;
};

} // namespace busquill
