// Widgets that the Qt toolkit has no exact match for.
#pragma once

#include <QPixmap>
#include <QPushButton>

namespace korv::ui::qt {

// A button drawn by its images: up, down (pressed), focused and disabled, as
// the platform's bitmap buttons are. Without an up image it is a plain button
// showing its caption.
class BitmapButton : public QPushButton {
public:
    using QPushButton::QPushButton;
    void set_images(const QPixmap& up, const QPixmap& down, const QPixmap& focus,
                    const QPixmap& disabled);
    bool has_images() const { return !m_up.isNull(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QPixmap m_up;
    QPixmap m_down;
    QPixmap m_focus;
    QPixmap m_disabled;
};

} // namespace korv::ui::qt
