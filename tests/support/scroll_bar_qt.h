#pragma once

#include <QApplication>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QWheelEvent>
#include <QtTest/QTest>
#include <QtTest/qtestspontaneevent.h>

namespace busquill::test {

/// Turns the wheel at a place of a window, in eighths of a degree: 120 are a notch. Like the
/// system, it sends the event to the window under the pointer, which passes it on.
inline void TurnWheelAt(QWidget& window, QPointF at, QPoint delta,
                        Qt::KeyboardModifiers keys = {}) {
    QWheelEvent event(at, window.mapToGlobal(at), {}, delta, Qt::NoButton, keys, Qt::NoScrollPhase,
                      false);
    QSpontaneKeyEvent::setSpontaneous(&event);
    qApp->notify(&window, &event);
}

/// The same in the middle of the window.
inline void TurnWheel(QWidget& window, QPoint delta, Qt::KeyboardModifiers keys = {}) {
    TurnWheelAt(window, window.rect().center(), delta, keys);
}

/// The rectangle of a part of a scroll bar.
inline QRect PartOf(QScrollBar& bar, QStyle::SubControl part) {
    QStyleOptionSlider option;
    option.initFrom(&bar);
    option.orientation = bar.orientation();
    option.minimum = bar.minimum();
    option.maximum = bar.maximum();
    option.sliderPosition = bar.sliderPosition();
    option.sliderValue = bar.value();
    option.pageStep = bar.pageStep();
    option.upsideDown = false;
    return bar.style()->subControlRect(QStyle::CC_ScrollBar, &option, part, &bar);
}

/// Clicks one of the two arrows of a scroll bar.
inline void ClickArrow(QScrollBar& bar, bool forward) {
    const auto arrow = forward ? QStyle::SC_ScrollBarAddLine : QStyle::SC_ScrollBarSubLine;
    QTest::mouseClick(&bar, Qt::LeftButton, {}, PartOf(bar, arrow).center());
}

} // namespace busquill::test
