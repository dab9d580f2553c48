#pragma once

#include "ui/framework/feature.h"

#include <cstddef>
#include <cstdint>
#include <map>

namespace busquill {

class CTesselDoc;
class CaptureTable;
class FindingModel;

/// The windows of the active capture show only the hits of an expression, or all samples again.
class HitFilter {
public:
    /// `list` has the hits, and outlives it.
    HitFilter(const FeatureParts& parts, const CaptureTable& list) : parts_(parts), list_(list) {}

    [[nodiscard]] bool CanSwitch() const;
    [[nodiscard]] bool IsOn() const;
    void Switch();
    /// Filters again by the hits of a capture if these are others now.
    void Renew(CTesselDoc& document);
    void Forget(CTesselDoc& document) { filteredBy_.erase(&document); }

private:
    [[nodiscard]] FindingModel* ModelOf(CTesselDoc& document) const;
    /// The capture of the active window; null: none.
    [[nodiscard]] CTesselDoc* ActiveDocument() const;
    void ShowOnly(CTesselDoc& document, const FindingModel& model);
    void ShowAll(CTesselDoc& document);

    const FeatureParts parts_;
    const CaptureTable& list_;
    std::map<const CTesselDoc*, std::size_t> filteredBy_; // the search whose hits are shown
};

} // namespace busquill
