#include "ui/testsuites/config_view.h"

#include "document/hex_fields.h"
#include "platform/prompts.h"
#include "testsuites/config_document.h"
#include "ui/framework/ask_for_file.h"
#include "ui/framework/mdi_child.h"
#include "ui/framework/painting.h"
#include "ui/testsuites/config_analysis_view.h"
#include "ui/testsuites/register_picture.h"

#include <QLineEdit>
#include <QPushButton>

namespace busquill {

namespace {

constexpr int top = 35; // of picture and analysis
constexpr int pictureCharacters = 32;
constexpr int analysisGap = 30;
constexpr int analysisBottom = 70; // from the bottom of the view
constexpr int headingHeight = 16;
constexpr int buttonRow = 30;
constexpr int addressLabelWidth = 55;
constexpr int addressWidth = 132;

FileQuestion QuestionFor(FileUse use) {
    return {use,
            use == FileUse::Save ? "Save Configuration" : "Load Configuration",
            "Configuration(*.cfg)",
            ".cfg",
            "",
            ""};
}

} // namespace

CConfigView::CConfigView(Parts parts)
    : CFormView(parts.settings), document_(parts.document), link_(parts.link),
      prompts_(parts.prompts), picture_(new RegisterPicture(parts.document.Device(), this)),
      analysis_(new CConfigAnalysisView(parts.document.Device(), this)),
      address_(new QLineEdit(this)) {
    address_->setObjectName("Address");
    address_->setReadOnly(true);
    AddUpperButton("&Find", 0, [this] { Scan(ScanDirection::First); });
    AddUpperButton("< &Back", 1, [this] { Scan(ScanDirection::Back); });
    AddUpperButton("&Next >", 2, [this] { Scan(ScanDirection::Next); });
    AddUpperButton("&Read", 3, [] {});
    AddUpperButton("&Write", 4, [] {});
    AddButton("&Options", Form::SlotLeft(0),
              [this] { prompts_.Message("No options are available."); });
    AddButton("&Save", Form::SlotLeft(1), [this] { Save(); });
    AddButton("&Load", Form::SlotLeft(2), [this] { Load(); });
    AddButton("&Help", Form::SlotLeft(3), std::move(parts.showHelp));
    AddButton("&Close", Form::SlotLeft(4), [this] { CMDIChildWnd::FrameOf(*this)->close(); });
}

void CConfigView::AddUpperButton(const QString& text, int slot, std::function<void()> act) {
    auto* button = new QPushButton(text, this);
    connect(button, &QPushButton::clicked, this, std::move(act));
    upperButtons_.resize(static_cast<std::size_t>(slot) + 1);
    upperButtons_.back() = button;
}

void CConfigView::OnUpdate(DocumentView* /*sender*/, int hint, const HintObject* /*object*/) {
    update();
    if (hint != CDocument::hintLoaded) {
        return;
    }
    address_->setText(
        QString::fromStdString(HexAddressText(document_.Device().Identity().address)));
    analysis_->Refresh();
    picture_->update();
}

void CConfigView::Scan(ScanDirection direction) {
    if (ScanForDevice(link_, direction, document_.Device(), prompts_)) {
        document_.UpdateAllViews(nullptr, CDocument::hintLoaded);
    }
}

void CConfigView::Save() {
    const std::string path = AskForFile(this, QuestionFor(FileUse::Save), prompts_);
    if (!path.empty()) {
        static_cast<void>(document_.OnSaveDocument(path)); // reports its failure
    }
}

void CConfigView::Load() {
    const std::string path = AskForFile(this, QuestionFor(FileUse::Open), prompts_);
    if (!path.empty()) {
        static_cast<void>(document_.OnOpenDocument(path)); // reports its failure, updates the views
    }
}

void CConfigView::LayOut() {
    const int pictureWidth = std::max(DialogUnits(*this, 4 * pictureCharacters, 0).width(),
                                      RegisterPicture::NeededWidth());
    picture_->setGeometry(Form::margin, top - RegisterGeometry::bitNumbers, pictureWidth,
                          RegisterGeometry::Height());
    const int left = Form::margin + pictureWidth + analysisGap;
    analysis_->setGeometry(left, top, std::max(0, width() - Form::margin - left),
                           std::max(0, height() - analysisBottom - top));
    analysis_->SetFormWidth(width());
    AddLabel("Header", *picture_, {Form::margin, 2, pictureWidth, headingHeight});
    AddLabel("Analysis", *analysis_, {left, 2, analysis_->width(), headingHeight});
    for (std::size_t slot = 0; slot < upperButtons_.size(); ++slot) {
        upperButtons_[slot]->setGeometry(
            Form::ButtonPlace(Form::SlotLeft(static_cast<int>(slot)), height() - buttonRow));
    }
    const QRect row = Form::ButtonPlace(Form::SlotLeft(5), height() - buttonRow);
    AddLabel("Address", *address_, {row.left(), row.top(), addressLabelWidth, row.height()});
    address_->setGeometry(row.left() + addressLabelWidth, row.top(), addressWidth, row.height());
}

} // namespace busquill
