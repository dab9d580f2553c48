// The Display Properties sheet in the program, and the windows that follow it.

#include "capture/trace_document.h"
#include "support/program_fixture_qt.h"
#include "ui/controls/color_button.h"
#include "ui/display/display_properties.h"
#include "ui/display/trace_display.h"
#include "ui/display/trace_view.h"
#include "ui/framework/mdi_child.h"
#include "ui/framework/painting.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTextBrowser>

#include <algorithm>
#include <map>
#include <span>
#include <utility>

namespace busquill::test {
namespace {

constexpr int grey = 0xC0C0C0;

struct KeyAndDefault {
    const char* key;
    int standard;
};
constexpr KeyAndDefault markerKeys[] = {
    {"StateTriggerColor", 0x0000FF},    {"StateMarker1Color", 0x00FF00},
    {"StateMarker2Color", 0xFF0000},    {"WaveformTriggerColor", 0x0000FF},
    {"WaveformMarker1Color", 0x00FF00}, {"WaveformMarker2Color", 0xFF0000}};
constexpr KeyAndDefault colorKeys[] = {{"StateBackgroundColor", grey},
                                       {"StateAlternateBackgroundColor", grey},
                                       {"StateAlternate", 0},
                                       {"WaveformBackgroundColor", grey},
                                       {"WaveformAlternateBackgroundColor", grey},
                                       {"WaveformAlternate", 0},
                                       {"OtherBackgroundColor", grey}};

/// The button that changes a setting, by its object name.
const std::pair<const char*, const char*> buttonOfKey[] = {
    {"StateBackgroundColor", "State Background"},
    {"StateAlternateBackgroundColor", "State Alternate"},
    {"WaveformBackgroundColor", "Waveform Background"},
    {"WaveformAlternateBackgroundColor", "Waveform Alternate"},
    {"OtherBackgroundColor", "Other Windows Background"},
    {"StateTriggerColor", "State Trigger"},
    {"StateMarker1Color", "State Marker 1"},
    {"StateMarker2Color", "State Marker 2"},
    {"WaveformTriggerColor", "Waveform Trigger"},
    {"WaveformMarker1Color", "Waveform Marker 1"},
    {"WaveformMarker2Color", "Waveform Marker 2"}};

/// Counts the paint events of widgets and of what they contain.
class Paints final : public QObject {
public:
    explicit Paints(const QList<QWidget*>& widgets) {
        for (QWidget* widget : widgets) {
            widget->installEventFilter(this);
            for (QWidget* child : widget->findChildren<QWidget*>()) {
                child->installEventFilter(this);
            }
        }
    }
    void Forget() const { counts_.clear(); }
    [[nodiscard]] int Of(const QWidget& widget) const {
        int count = 0;
        for (const auto& [painted, times] : counts_) {
            const auto* each = static_cast<const QWidget*>(painted);
            // A form is painted itself, a trace inside its view.
            const bool display = dynamic_cast<const TraceDisplay*>(each) != nullptr;
            count += each == &widget || (display && widget.isAncestorOf(each)) ? times : 0;
        }
        return count;
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        counts_[watched] += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }

private:
    mutable std::map<QObject*, int> counts_;
};

class DisplayProperties : public ProgramFixture {
protected:
    DisplayProperties() { StartDemo(); }

    void Open(const QString& page, const std::function<void(CDisplayProperties&)>& act) {
        ChooseDialog<CDisplayProperties>("Edit/Display/" + page, [&](CDisplayProperties& sheet) {
            QApplication::processEvents();
            act(sheet);
        });
        QApplication::processEvents();
    }
    static void ShowPage(CDisplayProperties& sheet, int index) {
        auto* bar = sheet.findChild<QTabBar*>();
        QTest::mouseClick(bar, Qt::LeftButton, {}, bar->tabRect(index).center());
    }
    static ColorButton& Button(CDisplayProperties& sheet, const QString& name) {
        auto* button = sheet.findChild<ColorButton*>(name);
        if (button == nullptr) {
            throw std::runtime_error("no button " + name.toStdString());
        }
        return *button;
    }
    /// Answers the colour dialog that a click on the button opens.
    static void Choose(ColorButton& button, const QColor& color, bool ok = true) {
        AnswerDialog<QColorDialog>([&] { QTest::mouseClick(&button, Qt::LeftButton); },
                                   [&](QColorDialog& dialog) {
                                       dialog.setCurrentColor(color);
                                       Press(dialog, ok ? "OK" : "Cancel");
                                   });
    }
    using ProgramFixture::Choose;
    bool Stored(const char* key) const { return settings.Has("Display", key); }
    int Value(const char* key) const { return settings.GetProfileInt("Display", key, -1); }
    CTesselDoc& OpenTrace() {
        return dynamic_cast<CTesselDoc&>(
            *program->App().OpenDocumentFile(dir.File("Trigger2.tra")));
    }
    /// The first view of that kind; Power Zoom does not count.
    CTraceView& ViewOf(bool state) {
        for (QMdiSubWindow* window : Windows()) {
            auto* view =
                dynamic_cast<CTraceView*>(dynamic_cast<CMDIChildWnd&>(*window).GetActiveView());
            if (view->IsState() == state && !view->IsZoom()) {
                return *view;
            }
        }
        throw std::runtime_error("no such view");
    }
    /// The pixel of a view's background that no field covers.
    static QColor Background(QMdiSubWindow* window) {
        auto* view = dynamic_cast<CMDIChildWnd&>(*window).GetActiveView();
        return view->grab().toImage().pixelColor(3, view->height() - 3);
    }
};

TEST_F(DisplayProperties, EachEntryOpensItsPage) {
    const char* const pages[] = {"Name", "Markers", "Grid", "Scale", "Colors"};
    for (int i = 0; i < 5; ++i) {
        Open(pages[i], [&](CDisplayProperties& sheet) {
            EXPECT_EQ(sheet.windowTitle(), "Display Properties");
            const auto* tabs = sheet.findChild<QTabWidget*>();
            ASSERT_EQ(tabs->count(), 5);
            for (int tab = 0; tab < 5; ++tab) {
                EXPECT_EQ(tabs->tabText(tab), pages[tab]);
            }
            EXPECT_EQ(tabs->currentIndex(), i);
            EXPECT_FALSE(ButtonOf(sheet, "Apply").isEnabled());
        });
    }
}

TEST_F(DisplayProperties, ShowsTheColoursAsTheyCome) {
    Open("Markers", [&](CDisplayProperties& sheet) {
        ShowPage(sheet, 4);
        for (const auto& [key, name] : buttonOfKey) {
            for (const auto& keys : {std::span<const KeyAndDefault>(markerKeys),
                                     std::span<const KeyAndDefault>(colorKeys)}) {
                for (const KeyAndDefault& each : keys) {
                    if (std::string(each.key) == key) {
                        EXPECT_EQ(Button(sheet, name).Color(),
                                  static_cast<std::uint32_t>(each.standard))
                            << key;
                    }
                }
            }
        }
        EXPECT_FALSE(ButtonOf(sheet, "State Alternate With").isChecked());
        EXPECT_FALSE(ButtonOf(sheet, "Waveform Alternate With").isChecked());
        EXPECT_EQ(ButtonOf(sheet, "State Alternate With").text(), "Alternate With:");
    });
}

TEST_F(DisplayProperties, EveryButtonKeepsItsOwnColor) {
    int red = 1;
    Open("Markers", [&](CDisplayProperties& sheet) {
        ShowPage(sheet, 4);
        for (const auto& each : buttonOfKey) {
            ShowPage(sheet, Button(sheet, each.second).isVisible() ? 4 : 1);
            Choose(Button(sheet, each.second), QColor(red++, 0x20, 0x30));
        }
        EXPECT_EQ(Value("StateTriggerColor"), -1) << "written before OK";
        Press(sheet, "OK");
    });
    red = 1;
    for (const auto& each : buttonOfKey) {
        EXPECT_EQ(Value(each.first), 0x302000 + red++) << each.first;
    }
    Open("Colors", [&](CDisplayProperties& sheet) {
        EXPECT_EQ(Button(sheet, "State Background").Color(), 0x302001U);
    });
}

TEST_F(DisplayProperties, ACancelledColorDialogChangesNothing) {
    Open("Markers", [&](CDisplayProperties& sheet) {
        Choose(Button(sheet, "State Trigger"), QColor(1, 2, 3), false);
        EXPECT_EQ(Button(sheet, "State Trigger").Color(), 0x0000FFU);
        EXPECT_FALSE(ButtonOf(sheet, "Apply").isEnabled());
    });
}

TEST_F(DisplayProperties, ChecksAreStoredWithTheirColors) {
    settings.WriteProfileInt("Display", "WaveformAlternate", 1);
    Open("Colors", [&](CDisplayProperties& sheet) {
        EXPECT_TRUE(ButtonOf(sheet, "Waveform Alternate With").isChecked());
        Tick(sheet, "State Alternate With");
        EXPECT_TRUE(ButtonOf(sheet, "Apply").isEnabled());
        Tick(sheet, "Waveform Alternate With");
        Press(sheet, "OK");
    });
    EXPECT_EQ(Value("StateAlternate"), 1);
    EXPECT_EQ(Value("WaveformAlternate"), 0);
}

TEST_F(DisplayProperties, ACancelledSheetWritesNothing) {
    CTesselDoc& trace = OpenTrace();
    Open("Colors", [&](CDisplayProperties& sheet) {
        Choose(Button(sheet, "State Background"), QColor(1, 2, 3));
        Tick(sheet, "State Alternate With");
        QTest::keyClick(&sheet, Qt::Key_Escape);
        EXPECT_FALSE(sheet.isVisible());
    });
    for (const KeyAndDefault& each : colorKeys) {
        EXPECT_FALSE(Stored(each.key)) << each.key;
    }
    EXPECT_EQ(trace.Views().size(), 1U);
}

TEST_F(DisplayProperties, PagesThatWereNotShownSaveNothing) {
    Open("Name", [&](CDisplayProperties& sheet) { Press(sheet, "OK"); });
    for (const KeyAndDefault& each : markerKeys) {
        EXPECT_FALSE(Stored(each.key)) << each.key;
    }
    Open("Colors", [&](CDisplayProperties& sheet) { Press(sheet, "OK"); });
    for (const KeyAndDefault& each : markerKeys) {
        EXPECT_FALSE(Stored(each.key)) << each.key;
    }
    for (const KeyAndDefault& each : colorKeys) {
        EXPECT_EQ(Value(each.key), each.standard) << each.key;
    }
    Open("Colors", [&](CDisplayProperties& sheet) {
        ShowPage(sheet, 1);
        Press(sheet, "OK");
    });
    for (const KeyAndDefault& each : markerKeys) {
        EXPECT_EQ(Value(each.key), each.standard) << each.key;
    }
}

TEST_F(DisplayProperties, ApplyStoresAndTheSheetStays) {
    Open("Markers", [&](CDisplayProperties& sheet) {
        Choose(Button(sheet, "State Marker 2"), QColor(1, 2, 3));
        Press(sheet, "Apply");
        EXPECT_TRUE(sheet.isVisible());
        EXPECT_FALSE(ButtonOf(sheet, "Apply").isEnabled());
        EXPECT_EQ(Value("StateMarker2Color"), 0x030201);
        Choose(Button(sheet, "State Marker 1"), QColor(4, 5, 6));
        EXPECT_TRUE(ButtonOf(sheet, "Apply").isEnabled());
        Press(sheet, "Cancel");
    });
    EXPECT_EQ(Value("StateMarker2Color"), 0x030201);
    EXPECT_EQ(Value("StateMarker1Color"), 0x00FF00);
}

TEST_F(DisplayProperties, ByKeysAlone) {
    Open("Markers", [&](CDisplayProperties& sheet) {
        sheet.activateWindow();
        ColorButton& button = Button(sheet, "State Trigger");
        button.setFocus();
        AnswerDialog<QColorDialog>([&] { QTest::keyClick(&button, Qt::Key_Space); },
                                   [&](QColorDialog& dialog) {
                                       EXPECT_EQ(dialog.currentColor(), QColor(0xFF, 0, 0));
                                       dialog.setCurrentColor(QColor(9, 8, 7));
                                       QTest::keyClick(&dialog, Qt::Key_Return);
                                   });
        EXPECT_EQ(button.Color(), 0x070809U);
        sheet.activateWindow();
        QApplication::processEvents();
        QTest::keyClick(&button, Qt::Key_Tab, Qt::ControlModifier);
        EXPECT_EQ(sheet.findChild<QTabWidget*>()->currentIndex(), 2);
        EXPECT_TRUE(ButtonOf(sheet, "Apply").isEnabled());
        QAbstractButton& apply = ButtonOf(sheet, "Apply");
        apply.setFocus(Qt::TabFocusReason);
        QTest::keyClick(&apply, Qt::Key_Space);
    });
    EXPECT_EQ(Value("StateTriggerColor"), 0x070809);
}

TEST_F(DisplayProperties, MnemonicsReachTheButtons) {
    Open("Markers", [&](CDisplayProperties& sheet) {
        Choose(Button(sheet, "State Trigger"), QColor(9, 8, 7));
        sheet.activateWindow();
        QApplication::processEvents();
        QTest::keyClick(&sheet, Qt::Key_A, Qt::AltModifier);
        // A mnemonic shows its button pressed for a moment before it clicks.
        EXPECT_TRUE(QTest::qWaitFor([&] { return !ButtonOf(sheet, "Apply").isEnabled(); }, 5000));
        EXPECT_EQ(Value("StateTriggerColor"), 0x070809);
        EXPECT_TRUE(sheet.isVisible());
        EXPECT_EQ(AnswerMenu([&] { QTest::keyClick(&sheet, Qt::Key_S, Qt::AltModifier); }),
                  QStringList({"&Standard", "&Legible", "&Dark"}));
    });
}

TEST_F(DisplayProperties, TheColorThatKeysWouldChangeIsMarked) {
    Open("Markers", [&](CDisplayProperties& sheet) {
        sheet.activateWindow();
        ColorButton& button = Button(sheet, "State Marker 1");
        const QImage plain = button.grab().toImage();
        Button(sheet, "State Trigger").setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        ASSERT_EQ(QApplication::focusWidget(), &button);
        const QImage marked = button.grab().toImage();
        EXPECT_NE(marked, plain);
        const QRect color = marked.rect().adjusted(5, 5, -5, -5);
        EXPECT_EQ(marked.copy(color), plain.copy(color)) << "the colour itself stays as it is";
        QTest::keyClick(&button, Qt::Key_Tab);
        EXPECT_EQ(button.grab().toImage(), plain);
    });
}

TEST_F(DisplayProperties, ThePagesHaveTheirGroupsAndLabels) {
    Open("Name", [&](CDisplayProperties& sheet) {
        const auto* tabs = sheet.findChild<QTabWidget*>();
        // Texts from the top down; a label without one has a picture.
        const auto texts = [&](int page) {
            QStringList found;
            for (const auto* each : tabs->widget(page)->findChildren<QWidget*>()) {
                if (const auto* group = qobject_cast<const QGroupBox*>(each)) {
                    found << "[" + group->title() + "]";
                } else if (const auto* label = qobject_cast<const QLabel*>(each)) {
                    found << (label->pixmap().isNull() ? label->text() : QString("picture"));
                } else if (const auto* box = qobject_cast<const QCheckBox*>(each)) {
                    found << box->text();
                } else if (qobject_cast<const ColorButton*>(each) != nullptr) {
                    found << "color";
                }
            }
            return found;
        };
        EXPECT_TRUE(texts(0).contains("Name"));
        EXPECT_EQ(texts(1).count("[State]"), 1);
        EXPECT_EQ(texts(1).count("[Waveform]"), 1);
        EXPECT_EQ(texts(1).count("Trigger"), 2);
        EXPECT_EQ(texts(1).count("Marker"), 4);
        EXPECT_EQ(texts(1).count("picture"), 4);
        EXPECT_EQ(texts(1).count("color"), 6);
        EXPECT_TRUE(tabs->widget(2)->children().isEmpty());
        EXPECT_TRUE(tabs->widget(3)->children().isEmpty());
        EXPECT_EQ(texts(4).count("[Other Windows]"), 1);
        EXPECT_EQ(texts(4).count("Background"), 3);
        EXPECT_EQ(texts(4).count("Alternate With:"), 2);
        EXPECT_EQ(texts(4).count("color"), 5);
    });
}

TEST_F(DisplayProperties, InALargeSheetTheRowsStayTogether) {
    for (const char* page : {"Markers", "Colors"}) {
        Open(page, [&](CDisplayProperties& sheet) {
            const auto heights = [&] {
                QList<int> found;
                for (const auto* group :
                     sheet.findChild<QTabWidget*>()->currentWidget()->findChildren<QGroupBox*>()) {
                    found << group->height();
                }
                return found;
            };
            sheet.resize(700, 700);
            QApplication::processEvents();
            const QList<int> before = heights();
            sheet.resize(700, 900);
            QApplication::processEvents();
            EXPECT_EQ(heights(), before) << page;
        });
    }
}

TEST_F(DisplayProperties, TheMenuHasItsFiveEntries) {
    QStringList entries;
    for (const QAction* entry : Entry("Edit/Display").menu()->actions()) {
        entries << entry->text();
    }
    EXPECT_EQ(entries, QStringList({"&Name", "&Markers", "&Grid", "&Scale", "&Colors"}));
    EXPECT_EQ(Entry("Edit/Display").text(), "&Display");
}

TEST_F(DisplayProperties, AButtonShowsItsColorInsideItsEdge) {
    Open("Markers", [&](CDisplayProperties& sheet) {
        ColorButton& button = Button(sheet, "State Trigger");
        const auto at = [&](int x, int y) { return button.grab().toImage().pixelColor(x, y); };
        EXPECT_EQ(at(5, 5), QColor(0xFF, 0, 0));
        EXPECT_NE(at(4, 5), QColor(0xFF, 0, 0));
        const QColor raised = at(1, 1);
        button.setDown(true);
        EXPECT_NE(at(1, 1), raised);
        button.setDown(false);
        Choose(button, QColor(0, 0, 0xFF));
        EXPECT_EQ(at(button.width() - 6, button.height() - 6), QColor(0, 0, 0xFF));
    });
}

TEST_F(DisplayProperties, WithoutATraceTheNameIsDisabledAndColorsWork) {
    ASSERT_TRUE(Windows().empty());
    Open("Name", [&](CDisplayProperties& sheet) {
        EXPECT_FALSE(sheet.findChild<QLineEdit*>("Name")->isEnabled());
        EXPECT_EQ(sheet.findChild<QLineEdit*>("Name")->text(), "");
        ShowPage(sheet, 4);
        Choose(Button(sheet, "Other Windows Background"), QColor(1, 2, 3));
        Press(sheet, "OK");
    });
    EXPECT_EQ(Value("OtherBackgroundColor"), 0x030201);
}

TEST_F(DisplayProperties, ATraceFromAFileShowsItsNameAndKeepsIt) {
    CTesselDoc& trace = OpenTrace();
    trace.comment = "Caf\xE9 \"a\""; // bytes of any code page
    Open("Name", [&](CDisplayProperties& sheet) {
        auto* name = sheet.findChild<QLineEdit*>("Name");
        EXPECT_FALSE(name->isEnabled());
        EXPECT_TRUE(name->text().startsWith("Caf"));
        QTest::keyClicks(name, "x");
        Press(sheet, "OK");
    });
    EXPECT_EQ(trace.comment, "Caf\xE9 \"a\"");
}

TEST_F(DisplayProperties, AnotherFunctionsWindowHasNoName) {
    OpenTrace();
    Choose("File/New/Exerciser/Master");
    Open("Name", [&](CDisplayProperties& sheet) {
        EXPECT_FALSE(sheet.findChild<QLineEdit*>("Name")->isEnabled());
        EXPECT_EQ(sheet.findChild<QLineEdit*>("Name")->text(), "");
    });
}

TEST_F(DisplayProperties, TheNameOfALiveTraceGoesIntoAllItsTitles) {
    for (const char* name : {"Trigger1.tra", "Trigger2.tra"}) {
        std::filesystem::remove(dir.File(name));
    }
    Choose("File/New/Capture/State");
    Choose("File/New/Capture/Waveform");
    ASSERT_EQ(Windows().size(), 2);
    Open("Name", [&](CDisplayProperties& sheet) {
        auto* name = sheet.findChild<QLineEdit*>("Name");
        ASSERT_TRUE(name->isEnabled());
        EXPECT_FALSE(ButtonOf(sheet, "Apply").isEnabled());
        QTest::keyClicks(name, "Slot \"7\"");
        EXPECT_EQ(name->text(), "Slot 7") << "a quote would end the name in a file";
        EXPECT_TRUE(ButtonOf(sheet, "Apply").isEnabled());
        QTest::keyClick(name, Qt::Key_Return);
    });
    for (const QMdiSubWindow* window : Windows()) {
        EXPECT_TRUE(window->windowTitle().endsWith("New (Slot 7)"))
            << window->windowTitle().toStdString();
    }
    Open("Name", [&](CDisplayProperties& sheet) {
        EXPECT_EQ(sheet.findChild<QLineEdit*>("Name")->text(), "Slot 7");
    });
}

TEST_F(DisplayProperties, HelpOpensItsPage) {
    Open("Colors", [&](CDisplayProperties& sheet) {
        Press(sheet, "Help");
        bool found = false;
        for (const QWidget* window : QApplication::topLevelWidgets()) {
            const auto* page = window->findChild<QTextBrowser*>();
            found = found || (window->isVisible() && page != nullptr &&
                              page->toPlainText().startsWith("Display properties"));
        }
        EXPECT_TRUE(found);
    });
}

TEST_F(DisplayProperties, OpenTracesFollow) {
    CTesselDoc& trace = OpenTrace();
    Choose("File/New/Capture/Waveform"); // the stored capture of Demo Mode
    Choose("Window/Tile");
    CTraceView& listing = ViewOf(true);
    CTraceView& waves = ViewOf(false);
    const std::int64_t top = listing.TopSample();
    trace.SetMarker(1, top + 2);
    trace.SetMarker(2, top + 3);
    trace.SetMarker(0, top + 4);
    const Paints paints({&listing, &waves});
    Open("Colors", [&](CDisplayProperties& sheet) {
        Choose(Button(sheet, "State Background"), QColor(1, 1, 1));
        Choose(Button(sheet, "State Alternate"), QColor(2, 2, 2));
        Choose(Button(sheet, "Waveform Background"), QColor(3, 3, 3));
        Choose(Button(sheet, "Waveform Alternate"), QColor(4, 4, 4));
        ShowPage(sheet, 1);
        Choose(Button(sheet, "State Trigger"), QColor(5, 5, 5));
        Choose(Button(sheet, "State Marker 1"), QColor(6, 6, 6));
        Choose(Button(sheet, "State Marker 2"), QColor(7, 7, 7));
        paints.Forget();
        Press(sheet, "OK");
    });
    EXPECT_GT(paints.Of(listing), 0);
    EXPECT_GT(paints.Of(waves), 0);
    const auto row = [&](int number) {
        return listing.grab().toImage().pixelColor(2, 19 + 15 * number + 7);
    };
    EXPECT_EQ(row(top % 2 == 0 ? 0 : 1), QColor(1, 1, 1));
    EXPECT_EQ(row(top % 2 == 0 ? 1 : 0), QColor(1, 1, 1)) << "alternation is off";
    EXPECT_EQ(row(2), QColor(6, 6, 6));
    EXPECT_EQ(row(3), QColor(7, 7, 7));
    EXPECT_EQ(row(4), QColor(5, 5, 5));
    // All grey shades in the waves' window but those of edges.
    const auto shades = [&] {
        const QImage image = waves.grab().toImage();
        std::map<int, int> counts;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QColor pixel = image.pixelColor(x, y);
                if (pixel.red() == pixel.green() && pixel.red() == pixel.blue()) {
                    ++counts[pixel.red()];
                }
            }
        }
        return counts;
    };
    EXPECT_GT(shades()[3], 1000);
    EXPECT_EQ(shades()[4], 0) << "alternation is off";
    EXPECT_EQ(Value("StateAlternateBackgroundColor"), 0x020202) << "kept for later";
    Open("Colors", [&](CDisplayProperties& sheet) {
        Tick(sheet, "State Alternate With");
        Tick(sheet, "Waveform Alternate With");
        Press(sheet, "Apply");
        QApplication::processEvents();
        EXPECT_EQ(row(top % 2 == 0 ? 1 : 0), QColor(2, 2, 2)) << "while the sheet is open";
    });
    EXPECT_GT(shades()[4], 1000);
}

/// Chooses a set of colours by the sheet's menu.
void ChooseSet(CDisplayProperties& sheet, const QString& name) {
    auto& button = dynamic_cast<QPushButton&>(ButtonOf(sheet, "Color Sets"));
    EXPECT_EQ(AnswerMenu([&] { QTest::mouseClick(&button, Qt::LeftButton); }, name),
              QStringList({"&Standard", "&Legible", "&Dark"}));
}

TEST_F(DisplayProperties, ASetIsOnBothPagesAndWaitsForOk) {
    Open("Name", [&](CDisplayProperties& sheet) {
        ChooseSet(sheet, "&Dark");
        EXPECT_TRUE(ButtonOf(sheet, "Apply").isEnabled());
        EXPECT_EQ(Button(sheet, "State Background").Color(), 0x202020U);
        EXPECT_TRUE(ButtonOf(sheet, "State Alternate With").isChecked());
        Press(sheet, "Cancel");
    });
    EXPECT_FALSE(Stored("StateBackgroundColor"));
    Open("Name", [&](CDisplayProperties& sheet) {
        ChooseSet(sheet, "&Dark");
        Press(sheet, "OK");
    });
    EXPECT_EQ(Value("StateBackgroundColor"), 0x202020);
    EXPECT_EQ(Value("WaveformMarker2Color"), 0xFFA870);
    EXPECT_EQ(Value("AdaptText"), 1);
    Open("Colors", [&](CDisplayProperties& sheet) {
        Choose(Button(sheet, "State Background"), QColor(1, 2, 3));
        Press(sheet, "OK");
    });
    EXPECT_EQ(Value("AdaptText"), 1) << "it stays with a set that was changed";
    Open("Scale", [&](CDisplayProperties& sheet) {
        ChooseSet(sheet, "&Standard");
        Press(sheet, "OK");
    });
    for (const auto& keys :
         {std::span<const KeyAndDefault>(markerKeys), std::span<const KeyAndDefault>(colorKeys)}) {
        for (const KeyAndDefault& each : keys) {
            EXPECT_EQ(Value(each.key), each.standard) << each.key;
        }
    }
    EXPECT_EQ(Value("AdaptText"), 0);
}

TEST_F(DisplayProperties, TheDarkSetHasLightTextInTracesAndForms) {
    OpenTrace();
    Choose("File/New/Capture/Waveform");
    Choose("File/New/Exerciser/Master");
    QWidget& form = *dynamic_cast<CMDIChildWnd&>(*Frame().Area().activeSubWindow()).GetActiveView();
    // Edges of titles and scroll bars are light too, so only what is below them counts.
    const auto lightness = [](QWidget& window, const QRect& part) {
        const QImage image = window.grab(part).toImage();
        std::pair range(255, 0);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const int pixel = image.pixelColor(x, y).lightness();
                range = {std::min(range.first, pixel), std::max(range.second, pixel)};
            }
        }
        return range;
    };
    QList<CTraceView*> views;
    for (QMdiSubWindow* window : Windows()) {
        if (auto* view =
                dynamic_cast<CTraceView*>(dynamic_cast<CMDIChildWnd&>(*window).GetActiveView())) {
            views << view;
        }
    }
    ASSERT_GE(views.size(), 2);
    Open("Colors", [&](CDisplayProperties& sheet) {
        ChooseSet(sheet, "&Dark");
        Press(sheet, "OK");
    });
    for (CTraceView* view : views) {
        // Numbers of samples, and values or waves.
        const int left = view->IsState() ? 3 : view->width() / 2;
        const int right = view->IsState() ? 50 : view->width() - 40;
        const QRect part(QPoint(left, 30), QPoint(right, view->height() / 2));
        const auto [darkest, lightest] = lightness(*view, part);
        EXPECT_GT(lightest, 100) << (view->IsState() ? "listing" : "waves");
        EXPECT_GE(darkest, 0x20) << (view->IsState() ? "listing" : "waves");
    }
    EXPECT_GT(form.palette().color(QPalette::WindowText).lightness(), 100);
    Open("Colors", [&](CDisplayProperties& sheet) {
        ChooseSet(sheet, "&Standard");
        Press(sheet, "OK");
    });
    EXPECT_EQ(form.palette().color(QPalette::WindowText),
              QApplication::palette().color(QPalette::WindowText));
}

TEST_F(DisplayProperties, EveryFunctionsWindowFollows) {
    const char* const entries[] = {
        "Performance/Utilization", "Exerciser/Master", "Exerciser/Configuration",
        "Exerciser/Stimulus",      "Target",           "Compliance Tests",
        "Anomaly Detection",       "Backplane Test"};
    for (const char* entry : entries) {
        Choose(QString("File/New/") + entry);
    }
    Frame().resize(2400, 1800);
    Choose("Window/Tile");
    ASSERT_EQ(Windows().size(), static_cast<qsizetype>(std::size(entries)));
    QList<QWidget*> views;
    for (QMdiSubWindow* window : Windows()) {
        EXPECT_EQ(Background(window), ColorOf(grey)) << window->windowTitle().toStdString();
        views << dynamic_cast<CMDIChildWnd&>(*window).GetActiveView();
    }
    const Paints paints(views);
    Open("Colors", [&](CDisplayProperties& sheet) {
        Choose(Button(sheet, "Other Windows Background"), QColor(0x10, 0x20, 0x30));
        paints.Forget();
        Press(sheet, "OK");
    });
    for (QMdiSubWindow* window : Windows()) {
        const QWidget& view = *dynamic_cast<CMDIChildWnd&>(*window).GetActiveView();
        EXPECT_GT(paints.Of(view), 0) << window->windowTitle().toStdString();
        EXPECT_EQ(Background(window), QColor(0x10, 0x20, 0x30))
            << window->windowTitle().toStdString();
    }
}

} // namespace
} // namespace busquill::test
