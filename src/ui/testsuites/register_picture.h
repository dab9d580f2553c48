#pragma once

#include "ui/testsuites/register_geometry.h"

#include <QWidget>

#include <span>

class QPainter;

namespace busquill {

/// Draws the picture of a header on any painter.
void DrawRegisterPicture(QPainter& painter, const RegisterGeometry& geometry,
                         std::span<const std::uint8_t, configHeaderBytes> header);

/// The header of a device as a picture of its registers.
class RegisterPicture final : public QWidget {
    Q_OBJECT
public:
    /// The device outlives the picture.
    RegisterPicture(const CConfigSpaceData& device, QWidget* parent);

    /// The width at which all names of fields fit.
    [[nodiscard]] static int NeededWidth();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const CConfigSpaceData& device_;
};

} // namespace busquill
