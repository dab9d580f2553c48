#pragma once

#include <QDialog>

#include <array>
#include <functional>

class QPushButton;
class QTabWidget;

namespace busquill {

class CDisplayPage;
class CTesselDoc;
class Settings;

enum class ColorSet;
enum class DisplayPage { Name, Markers, Grid, Scale, Colors };

/// The Display Properties sheet: the name of the active trace and the user's colours.
class CDisplayProperties final : public QDialog {
    Q_OBJECT
public:
    /// What the sheet works with; all outlive it.
    struct Parts {
        Settings& settings;
        CTesselDoc* trace; // the active one, or null
        std::function<void()> colorsChanged;
        std::function<void()> showHelp;
    };
    CDisplayProperties(QWidget* parent, const Parts& parts, DisplayPage first);

    void accept() override;

private:
    void AddPage(DisplayPage page, CDisplayPage* added, const QString& tab);
    void NeedPage(int index);
    void Apply();
    void AddSets(QPushButton& button);
    void ShowSet(ColorSet set);

    struct Page {
        CDisplayPage* page = nullptr;
        bool loaded = false;
    };
    std::array<Page, 5> pages_; // in the order of DisplayPage
    QTabWidget* tabs_;
    QPushButton* apply_;
};

} // namespace busquill
