#pragma once

#include "exerciser/target_run.h"
#include "ui/exerciser/exerciser_view.h"

class QCheckBox;

namespace busquill {

class CTargetDoc;

/// The board as a target on the bus: where and how it answers, and its memory, which can be filled
/// and read.
class CTargetView final : public ExerciserView, private ExerciserObserver {
    Q_OBJECT
public:
    CTargetView(const Parts& parts, CTargetDoc& document);

    void Go() { run_.Go(); }
    void Stop() { run_.Stop(); }
    void FollowBoard() override;

protected:
    void LayOut() override;

private:
    void OnRunning(bool running) override { emit RunningChanged(running); }
    void OnMemoryChanged() override;

    void MakeFields();

    CTargetDoc& document_;
    QWidget* space_ = nullptr; // or the modifier, which stands in its place
    QWidget* modifier_ = nullptr;
    QWidget* busStart_ = nullptr;
    QWidget* busLength_ = nullptr;
    QWidget* dataSize_ = nullptr;
    QWidget* waitStates_ = nullptr;
    QWidget* response_ = nullptr;
    QCheckBox* enabled_ = nullptr;
    QWidget* addressStart_ = nullptr;
    QWidget* addressEnd_ = nullptr;
    QWidget* dataType_ = nullptr;
    QWidget* dataValue_ = nullptr;
    QWidget* dataFile_ = nullptr;
    QWidget* command_ = nullptr;
    TargetRun run_;
};

} // namespace busquill
