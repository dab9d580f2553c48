#pragma once

#include "support/recording_paint_device_qt.h"

#include <QPageLayout>
#include <QPrintEngine>
#include <QPrinter>

#include <algorithm>
#include <vector>

namespace busquill::test {

/// Keeps what a printer prints, instead of the printer.
class PageRecorder {
public:
    PageRecorder(QSize size, QPageLayout::Orientation orientation)
        : device_(size), engine_(*this, orientation) {}

    /// From now on the printer prints here.
    void Record(QPrinter& printer) {
        (printer.*&Engines::setEngines)(&engine_,
                                        paint_ == nullptr ? device_.paintEngine() : paint_);
    }
    /// Pages are painted by another engine; null for the recorder's own.
    void PrintWith(QPaintEngine* engine) { paint_ = engine; }

    [[nodiscard]] const Recording& Recorded() const { return device_.Recorded(); }
    /// The texts of each page.
    [[nodiscard]] std::vector<std::vector<Recording::Text>> Pages() const {
        const auto& texts = Recorded().texts;
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
    struct Engines : QPrinter {
        using QPrinter::setEngines;
    };

    class Engine final : public QPrintEngine {
    public:
        Engine(PageRecorder& recorder, QPageLayout::Orientation orientation)
            : recorder_(recorder), layout_(QPageSize(QPageSize::A4), orientation, {}) {}

        void setProperty(PrintEnginePropertyKey /*key*/, const QVariant& /*value*/) override {}
        [[nodiscard]] QVariant property(PrintEnginePropertyKey key) const override {
            return key == PPK_QPageLayout ? QVariant::fromValue(layout_) : QVariant();
        }
        bool newPage() override {
            recorder_.starts_.push_back(recorder_.Recorded().texts.size());
            return true;
        }
        bool abort() override { return false; }
        [[nodiscard]] int metric(QPaintDevice::PaintDeviceMetric metric) const override {
            const RecordingPaintDevice& device = recorder_.device_;
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
        PageRecorder& recorder_;
        const QPageLayout layout_;
    };

    RecordingPaintDevice device_;
    Engine engine_;
    QPaintEngine* paint_ = nullptr;
    std::vector<std::size_t> starts_ = {0}; // of the pages, among the texts
};

/// A printer that keeps its pages.
class RecordingPrinter final : public PageRecorder, public QPrinter {
public:
    RecordingPrinter(QSize size, QPageLayout::Orientation orientation)
        : PageRecorder(size, orientation) {
        Record(*this);
    }
};

} // namespace busquill::test
