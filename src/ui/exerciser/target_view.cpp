#include "ui/exerciser/target_view.h"

#include "exerciser/target_document.h"
#include "platform/prompts.h"
#include "ui/exerciser/memory_list.h"
#include "ui/patterns/pattern_edit.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>

namespace busquill {

namespace {

constexpr ExerciserView::Words words = {"Target(*.tgt)", ".tgt", "Target Data File",
                                        "LastTargetDataFile"};
// The form, in distances from the bottom of the view.
constexpr int dumpBottom = 246;
constexpr int upperTop = 245;
constexpr int upperBottom = 125;
constexpr int lowerTop = 120;
constexpr int lowerBottom = 40;
constexpr int leastWidth = 160;
constexpr int leastLastWidth = 140;

} // namespace

CTargetView::CTargetView(const Parts& parts, CTargetDoc& document)
    : ExerciserView(parts, words, document), document_(document),
      run_(RunParts(), document.Form(), *this) {
    MakeFields();
    AddButtons([this] { Machine().prompts.Message("No options are available."); });
}

void CTargetView::MakeFields() {
    TargetForm& form = document_.Form();
    space_ = &AddChangingList(
        "AddressSpace", [this] { return document_.Family().spaces; }, form.addressSpace);
    modifier_ = &AddValue("AddressModifier", addressModifierBits, form.addressModifier);
    busStart_ = &AddValue("BusStart", form.busStart);
    busLength_ = &AddList("BusLength", targetLengths, form.busLength);
    dataSize_ = &AddList("DataSize", exerciserSizes, form.dataSize);
    QComboBox& waitStates = AddList("WaitStates", {}, form.waitStates);
    for (int count = 0; count < targetWaitStates; ++count) {
        waitStates.addItem(QString::number(count));
    }
    waitStates_ = &waitStates;
    response_ = &AddList("Response", targetResponses, form.response);
    enabled_ = new QCheckBox("Enable Target", this);
    connect(enabled_, &QCheckBox::clicked, this, [this, &form](bool checked) {
        form.enabled = checked;
        run_.SendSetup(); // reports its failure
    });
    AddShown([this, &form] { enabled_->setChecked(form.enabled); });
    addressStart_ = &AddValue("AddressStart", form.addressStart);
    addressEnd_ = &AddValue("AddressEnd", form.addressEnd);
    QComboBox& type = AddList("DataType", targetDataTypes, form.dataType);
    connect(&type, &QComboBox::currentIndexChanged, this, &CTargetView::LayOutAgain);
    dataType_ = &type;
    dataValue_ = &AddValue("DataValue", form.dataValue);
    dataFile_ = &AddDataFile(form.dataFilename);
    command_ = &AddList("Command", targetCommands, form.command);
}

void CTargetView::LayOut() {
    PlaceDump(dumpBottom);
    const int wide = Share(3, 8, 5, leastWidth);
    const std::array widths{wide, wide, Share(2, 8, 10, leastLastWidth)};
    const std::vector<QRect> upper = GroupPlaces(widths, upperTop, upperBottom);
    const std::vector<QRect> lower = GroupPlaces(widths, lowerTop, lowerBottom);

    AddGroup("Bus Address", upper[0]);
    const bool hasModifier = document_.Family().addressModifier;
    space_->setVisible(!hasModifier);
    modifier_->setVisible(hasModifier);
    PlaceField(*space_, "Space", 6, upper[0]);
    PlaceField(*modifier_, "AM", 6, upper[0]);
    PlaceField(*busStart_, "Start", 5, upper[0]);
    PlaceField(*busLength_, "Length", 4, upper[0]);
    AddGroup("Bus Data", upper[1]);
    PlaceField(*dataSize_, "Size", 6, upper[1], longLabels);
    PlaceField(*waitStates_, "Wait States", 5, upper[1], longLabels);
    PlaceField(*response_, "Response", 4, upper[1], longLabels);
    AddGroup("Bus Control", upper[2]);
    PlaceField(*enabled_, "", 6, upper[2]);

    AddGroup("Target Address", lower[0]);
    PlaceField(*addressStart_, "Start", 1, lower[0]);
    PlaceField(*addressEnd_, "End", 0, lower[0]);
    AddGroup("Target Data", lower[1]);
    PlaceField(*dataType_, "Type", 1, lower[1]);
    dataValue_->setVisible(document_.Form().dataType == DataIsValue);
    dataFile_->setVisible(document_.Form().dataType == DataIsFile);
    PlaceField(*dataValue_, "Value", 0, lower[1]);
    PlaceField(*dataFile_, "File", 0, lower[1]);
    AddGroup("Command", lower[2]);
    PlaceField(*command_, "", 1, lower[2]);
}

void CTargetView::FollowBoard() {
    document_.FollowBoard();
}

void CTargetView::OnMemoryChanged() {
    Dump().SetMemory(run_.Memory());
}

} // namespace busquill
