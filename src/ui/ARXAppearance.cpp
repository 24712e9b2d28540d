#include "ui/ARXAppearance.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

namespace ARXAppearance {

namespace {

QPalette darkPalette() {
    QPalette p;
    const QColor window(45, 45, 48), base(30, 30, 32), text(230, 230, 230), accent(52, 120, 246);
    p.setColor(QPalette::Window, window);
    p.setColor(QPalette::WindowText, text);
    p.setColor(QPalette::Base, base);
    p.setColor(QPalette::AlternateBase, window);
    p.setColor(QPalette::ToolTipBase, window);
    p.setColor(QPalette::ToolTipText, text);
    p.setColor(QPalette::Text, text);
    p.setColor(QPalette::Button, window);
    p.setColor(QPalette::ButtonText, text);
    p.setColor(QPalette::Highlight, accent);
    p.setColor(QPalette::HighlightedText, Qt::white);
    p.setColor(QPalette::Link, accent.lighter(130));
    p.setColor(QPalette::PlaceholderText, QColor(140, 140, 140));
    for (auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        p.setColor(QPalette::Disabled, role, QColor(120, 120, 120));
    }
    return p;
}

} // namespace

void apply(long long appearance) {
    // Qt 6.4 cannot ask the platform theme for a light or dark variant, so a forced appearance
    // uses the Fusion style, which follows the palette faithfully.
    if (appearance == 1 || appearance == 2) {
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
        QApplication::setPalette(appearance == 2 ? darkPalette()
                                                 : QApplication::style()->standardPalette());
    }
}

} // namespace ARXAppearance
