#include "ui/exerciser/master_view.h"

#include "exerciser/master_document.h"
#include "platform/main_thread.h"
#include "platform/prompts.h"
#include "ui/exerciser/master_options_dialog.h"
#include "ui/exerciser/memory_list.h"
#include "ui/framework/mdi_child.h"
#include "ui/patterns/pattern_edit.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QRegularExpressionValidator>
#include <QTimer>

namespace busquill {

namespace {

constexpr ExerciserView::Words words = {"Master(*.mst)", ".mst", "Master Data File",
                                        "LastMasterDataFile"};
// The form, in distances from the bottom of the view.
constexpr int dumpBottom = 171;
constexpr int groupTop = 170;
constexpr int groupBottom = 40;
constexpr int leastWidth = 160;
constexpr int leastCommandWidth = 140;

} // namespace

CMasterView::CMasterView(const Parts& parts, CMasterDoc& document)
    : ExerciserView(parts, words, document), document_(document), status_(new QListWidget(this)),
      run_(RunParts(), document.Form(), *this) {
    MakeFields();
    AddButtons([this] { EditOptions(); });
}

void CMasterView::MakeFields() {
    MasterForm& form = document_.Form();
    space_ = &AddChangingList(
        "AddressSpace", [this] { return document_.Family().spaces; }, form.addressSpace);
    modifier_ = &AddValue("AddressModifier", addressModifierBits, form.addressModifier);
    addressSize_ = &AddList("AddressSize", exerciserSizes, form.addressSize);
    addressStart_ = &AddValue("AddressStart", form.addressStart);
    addressEnd_ = &AddValue("AddressEnd", form.addressEnd);
    dataSize_ = &AddList("DataSize", exerciserSizes, form.dataSize);
    dataCycle_ = &AddList("DataCycle", masterCycles, form.dataCycle);
    QComboBox& type = AddList("DataType", masterDataTypes, form.dataType);
    connect(&type, &QComboBox::currentIndexChanged, this, &CMasterView::LayOutAgain);
    dataType_ = &type;
    dataValue_ = &AddValue("DataValue", form.dataValue);
    dataFile_ = &AddDataFile(form.dataFilename);
    for (const MasterAttribute& each : masterAttributes) {
        attributes_.push_back(&AddValue(QString::fromStdString(std::string(each.key)),
                                        static_cast<unsigned>(each.bits), form.*each.value));
    }
    command_ = &AddChangingList(
        "Command", [this] { return document_.Family().commands; }, form.command);
    repeat_ = new QLineEdit(this);
    repeat_->setObjectName("Repeat");
    repeat_->setAlignment(Qt::AlignRight);
    repeat_->setValidator(new QRegularExpressionValidator(QRegularExpression("[0-9]*"), repeat_));
    connect(repeat_, &QLineEdit::textEdited, this,
            [&form](const QString& text) { form.repeat = text.toStdString(); });
    AddShown([this, &form] { repeat_->setText(QString::fromStdString(form.repeat)); });
    status_->setObjectName("Status");
    status_->setUniformItemSizes(true);
}

void CMasterView::LayOut() {
    PlaceDump(dumpBottom);
    const MasterFamily& family = document_.Family();
    const bool narrow = family.attributes;
    const int of = narrow ? 10 : 8;
    std::vector<int> widths(2, Share(3, of, 5, leastWidth));
    if (narrow) {
        widths.push_back(Share(2, of, 0, leastWidth));
    }
    widths.push_back(Share(2, of, 10, leastCommandWidth));
    const std::vector<QRect> groups = GroupPlaces(widths, groupTop, groupBottom);

    AddGroup("Address", groups[0]);
    space_->setVisible(!family.addressModifier);
    modifier_->setVisible(family.addressModifier);
    PlaceField(*space_, "Space", 3, groups[0]);
    PlaceField(*modifier_, "AM", 3, groups[0]);
    PlaceField(*addressSize_, "Size", 2, groups[0]);
    PlaceField(*addressStart_, "Start", 1, groups[0]);
    PlaceField(*addressEnd_, "End", 0, groups[0]);

    AddGroup("Data", groups[1]);
    PlaceField(*dataSize_, "Size", 3, groups[1]);
    PlaceField(*dataCycle_, "Cycle", 2, groups[1]);
    PlaceField(*dataType_, "Type", 1, groups[1]);
    const std::int32_t type = document_.Form().dataType;
    dataValue_->setVisible(type == DataIsValue);
    dataFile_->setVisible(type == DataIsFile);
    PlaceField(*dataValue_, "Value", 0, groups[1]);
    PlaceField(*dataFile_, "File", 0, groups[1]);

    for (QWidget* attribute : attributes_) {
        attribute->setVisible(narrow);
    }
    if (narrow) {
        AddGroup("Attribute", groups[2]);
        int row = static_cast<int>(attributes_.size());
        for (std::size_t i = 0; i < attributes_.size(); ++i) {
            const std::string_view label = masterAttributes[i].label;
            PlaceField(*attributes_[i],
                       QString::fromUtf8(label.data(), static_cast<qsizetype>(label.size())), --row,
                       groups[2], longLabels);
        }
    }

    const QRect& command = groups.back();
    AddGroup("Command", command);
    PlaceField(*command_, "", 3, command);
    PlaceField(*repeat_, "Repeat", 2, command, command.width() / 2 - fieldMargin);
    PlaceField(*status_, "", 0, command);
    status_->setGeometry(
        status_->geometry().united(Form::FieldPlace(1, status_->x(), status_->width(), height())));
}

/// The form of PCI-X has one group more, for which the window is made wide enough.
void CMasterView::FollowBoard() {
    const int usualWidth = document_.Family().windowWidth;
    document_.FollowBoard();
    const int width = document_.Family().windowWidth;
    CMDIChildWnd* frame = CMDIChildWnd::FrameOf(*this);
    if (width > usualWidth && !frame->isMinimized() && frame->width() < width) {
        frame->resize(width, frame->height());
    }
}

void CMasterView::OnMemoryChanged() {
    Dump().SetMemory(run_.Memory());
}

void CMasterView::OnStatusCleared() {
    status_->clear();
}

void CMasterView::OnStatus(std::span<const std::string_view> lines) {
    for (const std::string_view line : lines) {
        status_->addItem(QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size())));
    }
    status_->setCurrentRow(status_->count() - 1);
}

/// The first poll comes when no event waits, so that a quick step is not held up by the period, and
/// the user's Stop not by quick steps. While a box of another thread is open, the period's polls
/// wait, and so does this one.
void CMasterView::OnStepStarted() {
    QTimer::singleShot(0, this, [this] {
        if (!Machine().mainThread.BoxOpen()) {
            run_.Poll();
        }
    });
}

void CMasterView::EditOptions() {
    if (!document_.Family().addressModifier) {
        Machine().prompts.Message("No options are available.");
        return;
    }
    CMasterOptionsDialog dialog(this, document_.Form().busRequestLevel);
    dialog.exec();
}

} // namespace busquill
