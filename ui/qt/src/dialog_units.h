// Dialog units to pixels, as the Windows dialog manager converts them: a
// horizontal unit is a quarter of the dialog font's average character width,
// a vertical unit an eighth of its height, each product rounded.
#pragma once

#include "ui_defs.h"

#include <QFont>
#include <QRect>
#include <QSize>

namespace korv::ui::qt {

class DialogUnits {
public:
    // The units of `font`.
    explicit DialogUnits(const QFont& font);
    // Units from base values directly (tests, fallbacks).
    DialogUnits(int base_x, int base_y) : m_baseX(base_x), m_baseY(base_y) {}

    int base_x() const { return m_baseX; }
    int base_y() const { return m_baseY; }
    int x(int du) const { return mul_div(du, m_baseX, 4); }
    int y(int du) const { return mul_div(du, m_baseY, 8); }
    QRect rect(const CRect& r) const;
    QSize size(int cx, int cy) const { return {x(cx), y(cy)}; }
    // Pixels back to dialog units, rounded: a round trip gives the units again.
    int du_x(int px) const { return mul_div(px, 4, m_baseX); }
    int du_y(int px) const { return mul_div(px, 8, m_baseY); }

    // a * b / c rounded half away from zero, as MulDiv.
    static int mul_div(int a, int b, int c);

private:
    int m_baseX;
    int m_baseY;
};

} // namespace korv::ui::qt
