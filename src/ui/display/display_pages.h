/// The pages of the Display Properties sheet.
#pragma once

#include "ui/framework/display_colors.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

class QCheckBox;
class QGridLayout;
class QLineEdit;
class QVBoxLayout;

namespace busquill {

class ColorButton;
class CTesselDoc;

/// A page. It is loaded when it is shown for the first time, and only pages that were loaded are
/// saved. As it stands, a page without controls.
class CDisplayPage : public QWidget {
    Q_OBJECT
public:
    using QWidget::QWidget;

    /// Called once, before the user sees the page.
    virtual void Load() {}
    virtual void Save() {}

signals:
    /// The user has changed something.
    void Modified();
};

/// The name of the active trace, which can be changed while the trace is live.
class CDisplayName final : public CDisplayPage {
    Q_OBJECT
public:
    /// Without a document there is nothing to name; it outlives the page.
    explicit CDisplayName(CTesselDoc* trace);

    void Load() override;
    void Save() override;

private:
    CTesselDoc* trace_;
    QLineEdit* name_;
};

/// A page whose controls are colour settings.
class ColorSettingsPage : public CDisplayPage {
    Q_OBJECT
public:
    /// The settings outlive the page; `changed` is called after they have been written.
    ColorSettingsPage(Settings& settings, std::function<void()> changed);

    void Load() override;
    void Save() override;
    /// Shows the colours of a set, as if the user had chosen each.
    void ShowSet(ColorSet set);

protected:
    QGridLayout& AddGroup(const QString& title);
    /// A row with a colour; `name` tells its button from others of the group.
    void AddColor(QGridLayout& group, QWidget* label, const QString& name, ColorSetting setting);
    /// A setting without a control, which only sets change.
    void AddHidden(ColorSetting setting);
    /// A row with a check box in front of the colour that it turns on.
    void AddChoice(QGridLayout& group, const QString& text, ColorSetting choice,
                   ColorSetting color);

private:
    struct Field {
        ColorSetting setting;
        std::function<int()> value;
        std::function<void(int)> show;
    };

    Settings& settings_;
    std::function<void()> changed_;
    QVBoxLayout* groups_;
    std::vector<Field> fields_;
};

/// The colours of trigger and markers.
class CDisplayMarkers final : public ColorSettingsPage {
    Q_OBJECT
public:
    CDisplayMarkers(Settings& settings, std::function<void()> changed);
};

/// The colours behind listings, waveforms and the functions' windows.
class CDisplayColors final : public ColorSettingsPage {
    Q_OBJECT
public:
    CDisplayColors(Settings& settings, std::function<void()> changed);
};

} // namespace busquill
