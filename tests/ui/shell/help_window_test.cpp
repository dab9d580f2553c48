#include "support/program_fixture_qt.h"
#include "ui/shell/help_window.h"
#include "ui/shell/key_list.h"
#include "ui/shell/manual_browser.h"

#include <QDir>
#include <QImage>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTextBlock>
#include <QToolBar>
#include <QTreeWidget>
#include <QWindow>
#include <gmock/gmock.h>

namespace busquill::test {
namespace {

using testing::IsEmpty;

QString SourceOf(const QString& page) {
    QFile file(":/manual/" + page);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

class Help : public ProgramFixture {
protected:
    Help() {
        StartDemo();
        Choose("Help/Contents");
        window = Frame().findChild<HelpWindow*>();
        page = window->findChild<ManualBrowser*>();
        panes = window->findChild<QTabWidget*>();
    }
    QTreeWidget& List(const char* name) { return *window->findChild<QTreeWidget*>(name); }
    QLineEdit& Field(const char* name) { return *window->findChild<QLineEdit*>(name); }
    void ShowPane(const QString& name) {
        for (int i = 0; i < panes->count(); ++i) {
            if (panes->tabText(i) == name) {
                panes->setCurrentIndex(i);
            }
        }
        ASSERT_EQ(panes->tabText(panes->currentIndex()), name);
    }
    static QTreeWidgetItem* Entry(const QTreeWidget& list, const QString& text) {
        for (QTreeWidgetItemIterator at(const_cast<QTreeWidget*>(&list)); *at != nullptr; ++at) {
            if ((*at)->text(0) == text) {
                return *at;
            }
        }
        return nullptr;
    }
    static void Click(QTreeWidget& list, const QString& text) {
        QTreeWidgetItem* entry = Entry(list, text);
        ASSERT_NE(entry, nullptr) << text.toStdString();
        list.scrollToItem(entry);
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(entry).center());
    }
    static QStringList Visible(const QTreeWidget& list) {
        QStringList texts;
        for (int i = 0; i < list.topLevelItemCount(); ++i) {
            if (!list.topLevelItem(i)->isHidden()) {
                texts << list.topLevelItem(i)->text(0);
            }
        }
        return texts;
    }
    QString Title() { return page->document()->begin().text(); }
    /// The first visible line of the page.
    QString TopLine() { return page->cursorForPosition({20, 4}).block().text(); }
    static std::vector<ManualPage> Pages() { return Manual().Pages(); }

    HelpWindow* window;
    ManualBrowser* page;
    QTabWidget* panes;
};

// The manual as it stands.

TEST_F(Help, HasEveryPageOfTheManualAndNoOther) {
    QStringList files;
    for (const ManualPage& each : Pages()) {
        EXPECT_FALSE(files.contains(each.file)) << "twice: " << each.file.toStdString();
        EXPECT_FALSE(each.group.isEmpty()) << each.file.toStdString();
        files << each.file;
    }
    files << Manual::contents;
    files.sort();
    const QDir source(QString::fromStdString(SourceFile("docs/manual")));
    EXPECT_EQ(files, source.entryList({"*.md"}, QDir::Files, QDir::Name));
    EXPECT_EQ(QDir(":/manual").entryList({"*.md"}, QDir::Files, QDir::Name), files);
}

TEST_F(Help, OpensEveryPageFromTheContents) {
    QTreeWidget& contents = List("Contents");
    for (const ManualPage& each : Pages()) {
        Click(contents, each.title);
        EXPECT_EQ(page->Page(), each.file);
        EXPECT_EQ(page->document()->begin().blockFormat().headingLevel(), 1);
        // A tag such as <New> that is not escaped would swallow the rest of the page.
        for (QTextBlock block = page->document()->begin(); block.isValid(); block = block.next()) {
            EXPECT_FALSE(block.blockFormat().headingLevel() > 0 && block.text().isEmpty())
                << each.file.toStdString() << ": " << block.previous().text().toStdString();
        }
        EXPECT_GT(page->toPlainText().size(), SourceOf(each.file).size() * 0.7)
            << each.file.toStdString();
    }
}

TEST_F(Help, ItsTopicsHavePagesOfTheContents) {
    const auto& topics = program->App().HelpTopics();
    std::vector<int> numbers;
    for (const HelpTopicPage& topic : topics) {
        numbers.push_back(topic.topic);
        EXPECT_FALSE(Manual().TitleOf(topic.page).isEmpty()) << topic.page;
        program->App().ShowHelp(topic.topic);
        EXPECT_EQ(page->Page(), topic.page);
    }
    EXPECT_THAT(numbers, testing::IsSupersetOf({10, 12, 14, 16, 18, 20, 22, 26, 28, 30, 32}));
    program->App().ShowHelp(999);
    EXPECT_EQ(page->Page(), "index.md");
}

TEST_F(Help, ItsPicturesExistAndAllAreShown) {
    static const QRegularExpression picture(R"(!\[[^\]]*\]\(([^)]+)\))");
    QStringList shown;
    for (const ManualPage& each : Pages()) {
        auto found = picture.globalMatch(SourceOf(each.file));
        while (found.hasNext()) {
            const QString name = found.next().captured(1);
            shown << name.section('/', 1);
            EXPECT_FALSE(QImage(":/manual/" + name).isNull())
                << each.file.toStdString() << ": " << name.toStdString();
        }
    }
    shown.sort();
    shown.removeDuplicates();
    const QDir source(QString::fromStdString(SourceFile("docs/manual/pictures")));
    EXPECT_EQ(shown, source.entryList(QDir::Files, QDir::Name));
}

/// The anchors of a page, which links can name.
QStringList AnchorsIn(const QTextDocument& document) {
    QStringList anchors;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto at = block.begin(); !at.atEnd(); ++at) {
            anchors << at.fragment().charFormat().anchorNames();
        }
    }
    return anchors;
}

TEST_F(Help, ItsLinksLeadToPagesAndHeadings) {
    std::map<QString, QStringList> anchors;
    std::map<QString, QStringList> links;
    QStringList files{Manual::contents};
    for (const ManualPage& each : Pages()) {
        files << each.file;
    }
    for (const QString& file : files) {
        page->ShowPage(file);
        anchors[file] = AnchorsIn(*page->document());
        for (QTextBlock block = page->document()->begin(); block.isValid(); block = block.next()) {
            for (auto at = block.begin(); !at.atEnd(); ++at) {
                const QString link = at.fragment().charFormat().anchorHref();
                if (!link.isEmpty()) {
                    links[file] << link;
                }
            }
        }
    }
    int sections = 0;
    for (const auto& [file, targets] : links) {
        for (const QString& link : targets) {
            if (link.contains("://")) {
                continue;
            }
            const QString target = link.startsWith('#') ? file : link.section('#', 0, 0);
            ASSERT_TRUE(anchors.count(target) > 0)
                << file.toStdString() << ": " << link.toStdString();
            if (link.contains('#')) {
                ++sections;
                EXPECT_TRUE(anchors[target].contains(link.section('#', 1)))
                    << file.toStdString() << ": " << link.toStdString();
            }
        }
    }
    EXPECT_GT(sections, 10);
}

TEST_F(Help, NamesMenuEntriesThatExist) {
    static const QRegularExpression italics(R"(\*([A-Z][^*\n]* >[ \n][^*]*)\*)");
    int entries = 0;
    for (const ManualPage& each : Pages()) {
        auto found = italics.globalMatch(SourceOf(each.file));
        while (found.hasNext()) {
            const QString path = found.next().captured(1).simplified();
            ++entries;
            QString name = path;
            name.replace(" > ", "/");
            EXPECT_TRUE(FindEntry(*Frame().menuBar(), name) != nullptr ||
                        FindEntry(*Frame().menuBar(), name + "...") != nullptr)
                << each.file.toStdString() << ": " << path.toStdString();
        }
    }
    EXPECT_GT(entries, 50);
}

/// The keys in the tables of a page, each as it stands between commas.
QStringList KeysOnPage(const QString& source) {
    QStringList keys;
    bool isInTable = false;
    for (const QString& line : source.split('\n')) {
        isInTable = line.startsWith("| Key |") || (isInTable && line.startsWith('|'));
        if (isInTable && !line.startsWith("| Key |") && !line.startsWith("|---")) {
            keys += line.section('|', 1, 1).trimmed().split(", ");
        }
    }
    keys.removeDuplicates();
    keys.sort();
    return keys;
}

TEST_F(Help, TheKeysPageNamesTheSameKeysAsTheListOfKeys) {
    QStringList keys;
    for (const KeyLine& line : AllKeys()) {
        keys += line.keys.split(", ");
    }
    keys.removeDuplicates();
    keys.sort();
    EXPECT_EQ(KeysOnPage(SourceOf("keys.md")), keys);
}

// Reading.

TEST_F(Help, ALinkToAHeadingScrollsThere) {
    window->ShowPage("listing.md#define-signals");
    EXPECT_EQ(Title(), "The listing of a capture");
    QApplication::processEvents();
    EXPECT_EQ(TopLine(), "Define Signals");
    page->ShowPage("listing.md#rows"); // in the same page
    EXPECT_EQ(TopLine(), "Rows");
    // Also after Back, which reads the page again.
    page->ShowPage("master.md");
    EXPECT_EQ(List("Contents").selectedItems().value(0)->text(0), "Master");
    page->backward();
    page->scrollToAnchor("define-signals");
    EXPECT_EQ(TopLine(), "Define Signals");
}

TEST_F(Help, GoesBackForwardAndHome) {
    Click(List("Contents"), "Master");
    Click(List("Contents"), "Target");
    QTest::keyClick(page, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(page->Page(), "master.md");
    EXPECT_EQ(List("Contents").currentItem()->text(0), "Master") << "the contents follow";
    QTest::keyClick(page, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(page->Page(), "index.md");
    QTest::keyClick(page, Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(page->Page(), "master.md");
    QTest::keyClick(page, Qt::Key_Home, Qt::AltModifier);
    EXPECT_EQ(page->Page(), "index.md");
}

TEST_F(Help, PicturesAreNoWiderThanThePage) {
    page->ShowPage("listing.md"); // whose pictures are wider
    const auto widest = [&] {
        double width = 0;
        for (QTextBlock block = page->document()->begin(); block.isValid(); block = block.next()) {
            for (auto at = block.begin(); !at.atEnd(); ++at) {
                const QTextCharFormat format = at.fragment().charFormat();
                if (format.isImageFormat()) {
                    const QUrl name(format.toImageFormat().name());
                    const auto picture =
                        page->document()
                            ->resource(QTextDocument::ImageResource, page->source().resolved(name))
                            .value<QImage>();
                    EXPECT_FALSE(picture.isNull());
                    width = std::max(width, picture.deviceIndependentSize().width());
                }
            }
        }
        return width;
    };
    for (const int width : {1000, 700, 1200}) {
        window->resize(width, 600);
        QTest::qWait(200);
        EXPECT_LE(widest(), page->viewport()->width()) << width;
        EXPECT_GT(widest(), page->viewport()->width() - 80) << width;
        EXPECT_LE(page->document()->size().width(), page->viewport()->width())
            << "nothing but a wide table needs the horizontal bar";
    }
}

TEST_F(Help, TheIndexLeadsToSections) {
    ShowPane("Index");
    QTreeWidget& index = List("Index");
    ASSERT_GT(index.topLevelItemCount(), 100);
    QTest::keyClicks(&Field("Part"), "trigger pos");
    EXPECT_EQ(Visible(index), QStringList{"Trigger Position"});
    QTest::keyClick(&Field("Part"), Qt::Key_Return);
    EXPECT_EQ(page->Page(), "trace-setup.md#clocks");
    // A name that several pages explain.
    Field("Part").clear();
    EXPECT_EQ(Visible(index).size(), index.topLevelItemCount());
    QTest::keyClicks(&Field("Part"), "demo mode");
    QTreeWidgetItem* entry = Entry(index, "Demo Mode");
    ASSERT_NE(entry, nullptr);
    QTest::keyClick(&Field("Part"), Qt::Key_Down);
    EXPECT_TRUE(index.hasFocus());
}

TEST_F(Help, TheSearchFindsPagesWithAllWordsAndMarksThem) {
    QTest::keyClick(page, Qt::Key_F, Qt::ControlModifier);
    EXPECT_TRUE(Field("Question").hasFocus());
    QTest::keyClicks(&Field("Question"), "repeat PADDED");
    QTreeWidget& found = List("Found");
    QStringList expected;
    for (const ManualPage& each : Pages()) {
        const QString text = SourceOf(each.file).toLower();
        if (text.contains("repeat") && text.contains("padded")) {
            expected << each.title;
        }
    }
    ASSERT_TRUE(expected.contains("Master") && expected.contains("Target"));
    QStringList titles = Visible(found).replaceInStrings(QRegularExpression(" \\(.*"), "");
    titles.sort();
    expected.sort();
    EXPECT_EQ(titles, expected);
    EXPECT_LT(titles.size(), 6);
    Click(found, Visible(found).filter("Master")[0]);
    EXPECT_EQ(page->Page(), "master.md");
    Field("Question").selectAll();
    QTest::keyClicks(&Field("Question"), "padded master repeat");
    EXPECT_TRUE(Visible(found)[0].startsWith("Master (")) << "its title has one of the words";
    Field("Question").setText("power zoom sample clock");
    QTest::keyClick(&Field("Question"), Qt::Key_Return);
    EXPECT_EQ(page->Page(), "trace-setup.md") << "it has both words together";
    EXPECT_EQ(page->textCursor().block().text(), "Power Zoom Sample Clock");
    Field("Question").setText("repeat padded");
    page->ShowPage("master.md");
    QStringList marked;
    for (const auto& each : page->extraSelections()) {
        marked << each.cursor.selectedText().toLower();
        EXPECT_GT(each.format.background().color().lightness(), 120) << "under black letters";
        EXPECT_EQ(each.format.foreground().color(), Qt::black);
    }
    EXPECT_GE(marked.count("repeat"), 2);
    EXPECT_GE(marked.count("padded"), 1);
    EXPECT_EQ(marked.count("repeat") + marked.count("padded"), marked.size());
    // From one mark to the next, and around.
    const int first = page->textCursor().position();
    QTest::keyClick(page, Qt::Key_F3);
    EXPECT_GT(page->textCursor().position(), first);
    QTest::keyClick(page, Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(page->textCursor().position(), first);
    QTest::keyClick(page, Qt::Key_F3, Qt::ShiftModifier);
    EXPECT_EQ(page->textCursor().position(),
              page->extraSelections().back().cursor.selectionStart());
    Field("Question").clear();
    EXPECT_TRUE(page->extraSelections().isEmpty());
    EXPECT_TRUE(Visible(found).isEmpty());
    QTest::keyClicks(&Field("Question"), "nosuchword");
    EXPECT_TRUE(Visible(found).isEmpty());
}

TEST_F(Help, EscapeClosesIt) {
    QTest::keyClick(page, Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
    Choose("Help/Topics");
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(page->Page(), "index.md");
}

TEST_F(Help, CanBeReadWhileADialogIsOpen) {
    window->close();
    ChooseDialog<QDialog>("Utilities/Board Info", [&](QDialog& dialog) {
        QTest::keyClick(&dialog, Qt::Key_F1);
        ASSERT_TRUE(window->isVisible());
        EXPECT_EQ(page->Page(), "board-info.md");
        QTest::qWait(50);
        // Sent through the window system, which gives no events to windows that the dialog blocks.
        QTreeWidget& contents = List("Contents");
        const QPoint place = contents.viewport()->mapTo(
            window, contents.visualItemRect(Entry(contents, "Master")).center());
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, place);
        EXPECT_EQ(page->Page(), "master.md");
        QTest::keyClick(window->windowHandle(), Qt::Key_Left, Qt::AltModifier);
        EXPECT_EQ(page->Page(), "board-info.md");
        EXPECT_TRUE(dialog.isVisible());
    });
    EXPECT_TRUE(window->isVisible()) << "it outlives the dialog";
    EXPECT_EQ(window->parentWidget(), &Frame());
}

} // namespace
} // namespace busquill::test
