#include "control_widgets.h"

#include <QPainter>

namespace korv::ui::qt {

void BitmapButton::set_images(const QPixmap& up, const QPixmap& down, const QPixmap& focus,
                              const QPixmap& disabled) {
    m_up = up;
    m_down = down;
    m_focus = focus;
    m_disabled = disabled;
    update();
}

void BitmapButton::paintEvent(QPaintEvent* event) {
    if (m_up.isNull()) {
        QPushButton::paintEvent(event);
        return;
    }
    // A missing state image falls back to the up image, as the platform does.
    const QPixmap* image = &m_up;
    if (!isEnabled() && !m_disabled.isNull())
        image = &m_disabled;
    else if (isDown() && !m_down.isNull())
        image = &m_down;
    else if (hasFocus() && !m_focus.isNull())
        image = &m_focus;
    QPainter painter(this);
    QPixmap shown = *image;
    if (shown.width() > width() || shown.height() > height())
        shown = shown.scaled(size(), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    painter.drawPixmap((width() - shown.width()) / 2, (height() - shown.height()) / 2, shown);
}

} // namespace korv::ui::qt
