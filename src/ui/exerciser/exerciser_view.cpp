#include "ui/exerciser/exerciser_view.h"

#include "document/record_document.h"
#include "link/analyzer_link.h"
#include "platform/prompts.h"
#include "platform/settings.h"
#include "platform/working_directory.h"
#include "ui/exerciser/memory_list.h"
#include "ui/framework/ask_for_file.h"
#include "ui/framework/mdi_child.h"
#include "ui/framework/window_timer.h"
#include "ui/patterns/pattern_edit.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>

namespace busquill {

namespace {

constexpr int dumpTop = 5;

void AddTexts(QComboBox& list, std::span<const std::string_view> texts) {
    for (const std::string_view text : texts) {
        list.addItem(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
    }
}

/// An index that the list lacks stays in the form.
void Select(QComboBox& list, std::int32_t index) {
    const QSignalBlocker blocker(list);
    list.setCurrentIndex(index < list.count() ? index : -1);
}

} // namespace

ExerciserView::ExerciserView(const Parts& parts, const Words& words, RecordDocument& document)
    : CFormView(parts.settings), parts_(parts), words_(words), document_(document),
      dump_(new CMemoryListBox(this, [&link = parts.link] { return link.IsDemoMode(); })) {}

BoardRun::Parts ExerciserView::RunParts() const {
    return {parts_.link, parts_.prompts, std::make_unique<WindowTimer>(nullptr, parts_.mainThread)};
}

void ExerciserView::OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* /*object*/) {
    if (hint != CDocument::hintLoaded) {
        update(); // what the user is doing in the fields goes on in other colours
        return;
    }
    ShowForm();
    LayOutAgain(); // other fields may show
}

void ExerciserView::ShowForm() {
    for (const auto& show : shown_) {
        show();
    }
}

QComboBox& ExerciserView::AddList(const QString& name, std::span<const std::string_view> texts,
                                  std::int32_t& index) {
    auto* list = new QComboBox(this);
    list->setObjectName(name);
    AddTexts(*list, texts);
    connect(list, &QComboBox::currentIndexChanged, this, [&index](int chosen) { index = chosen; });
    AddShown([list, &index] { Select(*list, index); });
    return *list;
}

QComboBox& ExerciserView::AddChangingList(const QString& name,
                                          std::function<std::span<const std::string_view>()> texts,
                                          std::int32_t& index) {
    QComboBox& list = AddList(name, texts(), index);
    AddShown([&list, texts = std::move(texts), &index] {
        const QSignalBlocker blocker(list);
        list.clear();
        AddTexts(list, texts());
        Select(list, index);
    });
    return list;
}

CPatternEdit& ExerciserView::AddValue(const QString& name, BusAddress& value) {
    auto* field = new CPatternEdit(this);
    field->setObjectName(name);
    connect(field, &QLineEdit::textChanged, this,
            [field, &value] { value = AddressOf(field->Value()); });
    AddShown([field, &value] { field->SetValue(NumberOf(value)); });
    return *field;
}

CPatternEdit& ExerciserView::AddValue(const QString& name, unsigned bits, std::uint8_t& value) {
    auto* field = new CPatternEdit(this);
    field->setObjectName(name);
    field->SetWidth(bits);
    connect(field, &QLineEdit::textChanged, this,
            [field, &value] { value = static_cast<std::uint8_t>(field->Value()); });
    AddShown([field, &value] { field->SetValue(value); });
    return *field;
}

QLineEdit& ExerciserView::AddDataFile(std::string& path) {
    dataPath_ = &path;
    auto* field = new QLineEdit(this);
    field->setObjectName("DataFilename");
    field->setReadOnly(true);
    AddShown([field, &path] {
        field->setText(QString::fromStdString(path));
        field->setToolTip(field->text());
    });
    return *field;
}

void ExerciserView::AddButtons(std::function<void()> options) {
    AddButton("&Load", Form::SlotLeft(0), [this] { Load(); });
    AddButton("&Save", Form::SlotLeft(1), [this] { Save(); });
    AddButton("&File", Form::SlotLeft(3), [this] { ChooseDataFile(); });
    AddButton("&Options", Form::SlotLeft(4), std::move(options));
    AddButton("&Help", Form::SlotLeft(5), parts_.showHelp);
    AddButton("&Close", Form::SlotLeft(6), [this] { CMDIChildWnd::FrameOf(*this)->close(); });
}

void ExerciserView::Load() {
    FileQuestion question;
    question.filter = words_.filter;
    question.extension = words_.extension;
    const std::string path = AskForFile(this, question, parts_.prompts);
    if (!path.empty()) {
        static_cast<void>(document_.OnOpenDocument(path)); // reports its failure, updates the views
    }
}

void ExerciserView::Save() {
    FileQuestion question;
    question.use = FileUse::Save;
    question.filter = words_.filter;
    question.extension = words_.extension;
    const std::string path = AskForFile(this, question, parts_.prompts);
    if (!path.empty()) {
        static_cast<void>(document_.OnSaveDocument(path)); // reports its failure
    }
}

/// The file may be read or written, so it need not exist, and nothing is asked when it does.
void ExerciserView::ChooseDataFile() {
    FileQuestion question;
    question.use = FileUse::Name;
    question.title = words_.dataTitle;
    question.filter = "Data Files (*.dat)";
    question.extension = ".dat";
    question.folder = std::string(FolderOf(*dataPath_));
    question.name = dataPath_->substr(question.folder.size());
    const std::string path = AskForFile(this, question, parts_.prompts);
    if (!path.empty()) {
        *dataPath_ = path;
        parts_.settings.WriteProfileString(SettingsSection::setup, words_.dataKey, path);
        ShowForm();
    }
}

int ExerciserView::Share(int parts, int of, int less, int atLeast) const {
    return std::max(width() * parts / of - less, atLeast);
}

std::vector<QRect> ExerciserView::GroupPlaces(std::span<const int> widths, int top,
                                              int bottom) const {
    std::vector<QRect> places;
    int left = Form::margin;
    for (const int each : widths) {
        places.push_back(Form::GroupPlace(left, each, top, bottom, height()));
        left += each;
    }
    return places;
}

void ExerciserView::PlaceField(QWidget& field, const QString& label, int row, const QRect& group,
                               int labelWidth) {
    const int start = group.left() + fieldMargin;
    const int left = start + (label.isEmpty() ? 0 : labelWidth);
    const int width = group.right() + 1 - fieldMargin - left;
    field.setGeometry(Form::FieldPlace(row, left, width, height()));
    if (!label.isEmpty()) {
        AddLabel(label, field, Form::FieldPlace(row, start, labelWidth, height()));
    }
}

void ExerciserView::PlaceDump(int bottom) {
    dump_->setGeometry(Form::margin, dumpTop, width() - 2 * Form::margin,
                       std::max(height() - bottom - dumpTop, 0));
}

} // namespace busquill
