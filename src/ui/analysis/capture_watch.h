#pragma once

#include <QObject>

namespace busquill {

class CTesselDoc;

/// Tells of changes of a document, which one of its views notices. The views leave a document
/// before it is destroyed.
class CaptureWatch final : public QObject {
    Q_OBJECT
public:
    explicit CaptureWatch(CTesselDoc& document) : document_(document) { Listen(); }

signals:
    /// With the hint for the views.
    void Updated(int hint);
    /// The last view has gone. The watch may be destroyed by that.
    void Gone();

private:
    void Listen();

    CTesselDoc& document_;
};

} // namespace busquill
