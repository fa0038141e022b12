#include "dialog_units.h"

#include <QFontMetrics>

namespace korv::ui::qt {

DialogUnits::DialogUnits(const QFont& font) {
    const QFontMetrics metrics(font);
    const int width = metrics.horizontalAdvance(
        QStringLiteral("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"));
    m_baseX = (width / 26 + 1) / 2;
    m_baseY = metrics.height();
    // A font without metrics would collapse every dialog: keep the system font's units.
    if (m_baseX <= 0 || m_baseY <= 0) {
        m_baseX = 6;
        m_baseY = 13;
    }
}

QRect DialogUnits::rect(const CRect& r) const {
    const int left = x(r.left);
    const int top = y(r.top);
    return {left, top, x(r.right) - left, y(r.bottom) - top};
}

int DialogUnits::mul_div(int a, int b, int c) {
    if (c == 0)
        return -1;
    const long long product = static_cast<long long>(a) * b;
    const long long half = (c < 0 ? -c : c) / 2;
    const bool negative = (product < 0) != (c < 0);
    const long long magnitude = (product < 0 ? -product : product) + half;
    const long long q = magnitude / (c < 0 ? -c : c);
    return static_cast<int>(negative ? -q : q);
}

} // namespace korv::ui::qt
