#include "platform/working_directory.h"
#include "support/recording_paint_device_qt.h"
#include "support/recording_prompts.h"
#include "ui/testsuites/config_analysis_view.h"
#include "ui/testsuites/register_picture.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QScrollBar>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace busquill::test {
namespace {

using testing::ElementsAre;
using testing::SizeIs;

const RegisterGeometry geometry{320, 30};

TEST(RegisterGeometry, AFieldLiesBetweenItsBits) {
    EXPECT_EQ(geometry.Name(headerFields[0]), QRect(160, 14, 160, 10)) << "bits 0 to 15 of word 0";
    EXPECT_EQ(geometry.Name(headerFields[1]), QRect(0, 14, 160, 10));
    EXPECT_EQ(geometry.Name(headerFields[4]), QRect(240, 14 + 2 * 24, 80, 10));
    EXPECT_EQ(geometry.Name(headerFields[9]), QRect(0, 14 + 3 * 24, 80, 10));
}

TEST(RegisterGeometry, ADigitStandsOverFourBits) {
    EXPECT_EQ(geometry.Digit(0, 0), QRect(0, 24, 40, 14));
    EXPECT_EQ(geometry.Digit(15, 7), QRect(280, 14 + 15 * 24 + 10, 40, 14));
    EXPECT_EQ(geometry.Offset(1), QRect(320, 48, 30, 14));
    EXPECT_EQ(RegisterGeometry::Height(), 14 + 384 + 1);
}

Recording Drawn(std::span<const std::uint8_t, configHeaderBytes> header) {
    RecordingPaintDevice device({350, RegisterGeometry::Height()});
    QPainter painter(&device);
    DrawRegisterPicture(painter, geometry, header);
    painter.end();
    return device.Recorded();
}

QString RowText(const Recording& recording, const QRect& strip) {
    QString text;
    for (const Recording::Text& each : recording.TextsBetween(strip.top(), strip.bottom() + 1)) {
        text += each.text;
    }
    return text;
}

TEST(RegisterPicture, ShowsEachWordWithItsOffset) {
    std::array<std::uint8_t, configHeaderBytes> header{};
    for (std::size_t i = 0; i < header.size(); ++i) {
        header[i] = static_cast<std::uint8_t>(0xC0 + i);
    }
    const Recording recording = Drawn(header);
    EXPECT_EQ(RowText(recording, geometry.Digit(0, 0)), "C3C2C1C0 00H");
    EXPECT_EQ(RowText(recording, geometry.Digit(3, 0)), "CFCECDCC 0CH");
    EXPECT_EQ(RowText(recording, geometry.Digit(15, 0)), "FFFEFDFC 3CH");
    EXPECT_EQ(recording.ColorAt({160, 200}), QColor(Qt::white));
}

TEST(RegisterPicture, NamesTheFieldsOfTheFirstWords) {
    const Recording recording = Drawn(std::array<std::uint8_t, configHeaderBytes>{});
    EXPECT_EQ(RowText(recording, geometry.BitNumber(31)), "3116150");
    std::vector<std::string> names;
    for (const Recording::Text& text : recording.texts) {
        if (text.text.size() > 2 && !text.text.startsWith(' ')) {
            names.push_back(text.text.toStdString());
        }
    }
    EXPECT_THAT(names, ElementsAre("VENDOR ID", "DEVICE ID", "COMMAND", "STATUS", "REV ID",
                                   "CLASS CODE", "CACHE SIZE", "LAT TIMER", "HDR TYPE", "BIST"));
    EXPECT_EQ(RowText(recording, geometry.Digit(9, 0)), "00000000 24H");
}

TEST(RegisterPicture, NamesAreCentredAndMarkedAtTheirLeft) {
    const Recording recording = Drawn(std::array<std::uint8_t, configHeaderBytes>{});
    for (const HeaderField& field : headerFields) {
        const QRect place = geometry.Name(field);
        const bool marked = std::ranges::any_of(recording.lines, [&](const Recording::Line& line) {
            return line.line == QLine(place.left(), place.top(), place.left(), place.bottom());
        });
        EXPECT_TRUE(marked) << field.text;
        for (const Recording::Text& text : recording.texts) {
            if (text.text.toStdString() == field.text) {
                EXPECT_NEAR(text.rect.center().x(), place.center().x(), 2) << field.text;
            }
        }
    }
}

TEST(RegisterPicture, IsWideEnoughForTheNamesOfItsFields) {
    RegisterGeometry narrow{RegisterPicture::NeededWidth() - 30, 30};
    RecordingPaintDevice device({RegisterPicture::NeededWidth(), RegisterGeometry::Height()});
    QPainter painter(&device);
    DrawRegisterPicture(painter, narrow, std::array<std::uint8_t, configHeaderBytes>{});
    painter.end();
    for (const Recording::Text& text : device.Recorded().texts) {
        for (const HeaderField& field : headerFields) {
            if (text.text.toStdString() == field.text) {
                EXPECT_GT(text.rect.left(), narrow.Name(field).left()) << field.text;
                EXPECT_LT(text.rect.right(), narrow.Name(field).right()) << field.text;
            }
        }
    }
}

TEST(AnalysisView, ItsBoxesHaveLabels) {
    RecordingPrompts prompts;
    CConfigSpaceData data(WorkingDirectory("/nonexistent"), prompts);
    CConfigAnalysisView view(data, nullptr);
    view.resize(300, 400);
    view.SetFormWidth(620);
    const QImage image = view.widget()->grab().toImage();
    const int pitch = view.widget()->fontMetrics().height();
    const QColor ground = image.pixelColor(1, 0);
    const auto isBlank = [&](int line) {
        for (int y = line * pitch; y < line * pitch + pitch / 2; ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) != ground) {
                    return false;
                }
            }
        }
        return true;
    };
    EXPECT_TRUE(isBlank(3));
    EXPECT_FALSE(isBlank(5)) << "Command";
    EXPECT_TRUE(isBlank(17));
    EXPECT_FALSE(isBlank(18)) << "Status";
}

TEST(AnalysisView, ShowsTheAnalysisAndScrollsOverAThousandPixels) {
    RecordingPrompts prompts;
    CConfigSpaceData data(WorkingDirectory("/nonexistent"), prompts);
    CConfigAnalysisView view(data, nullptr);
    view.resize(300, 400);
    view.SetFormWidth(620);
    view.show();
    QApplication::processEvents();
    std::array<std::uint8_t, configBlockBytes> block{};
    block[4] = 0x02;
    block[7] = 0x04;
    data.Import(block);
    view.Refresh();
    EXPECT_EQ(view.widget()->height(), 1000);
    EXPECT_EQ(view.horizontalScrollBar()->maximum(), 0);
    EXPECT_EQ(view.verticalScrollBar()->maximum(), 1000 - view.viewport()->height());
    RecordingPaintDevice device({400, 1000});
    QPainter painter(&device);
    DrawAnalysisTexts(painter, {20, 8, 160, 400}, AnalyzeHeader(data));
    painter.end();
    const Recording& drawn = device.Recorded();
    const auto lineOf = [&](int line) {
        return RowText(drawn, QRect(0, line * 20, 400, 20)).toStdString();
    };
    EXPECT_EQ(lineOf(0), " Class: Unknown - ID 0x000000");
    EXPECT_EQ(lineOf(1), " Vendor: Unknown - ID 0x0000");
    EXPECT_EQ(lineOf(2), " Device/Rev ID: 0000.00");
    EXPECT_EQ(lineOf(3) + lineOf(4) + lineOf(5), "") << "a gap, and the label of the box";
    EXPECT_EQ(lineOf(7), "Memory Enabled:   Yes");
    EXPECT_EQ(lineOf(15), "Fast Back-Back:   No");
    EXPECT_EQ(lineOf(16) + lineOf(17) + lineOf(18), "");
    EXPECT_EQ(lineOf(23), "DEVSEL Timing:   Slow");
    EXPECT_EQ(lineOf(28), "Detected Parity Error:   No");
    for (const Recording::Text& text : drawn.texts) {
        if (text.text.startsWith(":")) {
            EXPECT_EQ(text.rect.left(), 160);
        }
    }
}

} // namespace
} // namespace busquill::test
