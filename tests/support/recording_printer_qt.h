#pragma once

#include "support/recording_paint_device_qt.h"

#include <QPageLayout>
#include <QPrintEngine>
#include <QPrinter>

#include <algorithm>
#include <vector>

namespace busquill::test {

/// A printer that keeps the texts of its pages.
class RecordingPrinter final : public QPrinter {
public:
    RecordingPrinter(QSize size, QPageLayout::Orientation orientation)
        : device_(size), engine_(*this, orientation) {
        setEngines(&engine_, device_.paintEngine());
    }

    [[nodiscard]] std::vector<std::vector<Recording::Text>> Pages() const {
        const auto& texts = device_.Recorded().texts;
        std::vector<std::vector<Recording::Text>> pages;
        for (std::size_t page = 0; page < starts_.size(); ++page) {
            const auto end = page + 1 < starts_.size() ? starts_[page + 1] : texts.size();
            pages.emplace_back(texts.begin() + static_cast<std::ptrdiff_t>(starts_[page]),
                               texts.begin() + static_cast<std::ptrdiff_t>(end));
        }
        return pages;
    }
    /// Whether a page has a text.
    [[nodiscard]] bool Shows(std::size_t page, const QString& text) const {
        const auto texts = Pages().at(page);
        return std::ranges::any_of(texts, [&](const auto& each) { return each.text == text; });
    }

private:
    class Engine final : public QPrintEngine {
    public:
        Engine(RecordingPrinter& printer, QPageLayout::Orientation orientation)
            : printer_(printer), layout_(QPageSize(QPageSize::A4), orientation, {}) {}

        void setProperty(PrintEnginePropertyKey /*key*/, const QVariant& /*value*/) override {}
        [[nodiscard]] QVariant property(PrintEnginePropertyKey key) const override {
            return key == PPK_QPageLayout ? QVariant::fromValue(layout_) : QVariant();
        }
        bool newPage() override {
            printer_.starts_.push_back(printer_.device_.Recorded().texts.size());
            return true;
        }
        bool abort() override { return false; }
        [[nodiscard]] int metric(QPaintDevice::PaintDeviceMetric metric) const override {
            const RecordingPaintDevice& device = printer_.device_;
            switch (metric) {
            case QPaintDevice::PdmWidth:
                return device.width();
            case QPaintDevice::PdmHeight:
                return device.height();
            case QPaintDevice::PdmDepth:
                return device.depth();
            case QPaintDevice::PdmNumColors:
                return device.colorCount();
            case QPaintDevice::PdmDevicePixelRatio:
                return 1;
            case QPaintDevice::PdmDevicePixelRatioScaled:
                return static_cast<int>(QPaintDevice::devicePixelRatioFScale());
            default:
                return device.logicalDpiX();
            }
        }
        [[nodiscard]] QPrinter::PrinterState printerState() const override {
            return QPrinter::Active; // pages are taken at any time
        }

    private:
        RecordingPrinter& printer_;
        const QPageLayout layout_;
    };

    RecordingPaintDevice device_;
    Engine engine_;
    std::vector<std::size_t> starts_ = {0}; // of the pages, among the texts
};

} // namespace busquill::test
