#include "ui/ARXWorkspacePlaceholderWindow.h"

#include "app/ARXConf.h"

#include <QGuiApplication>
#include <QLabel>
#include <QScreen>
#include <QVBoxLayout>

ARXWorkspacePlaceholderWindow::ARXWorkspacePlaceholderWindow(const QString& name,
                                                             const ARXAtriumData& data,
                                                             QWidget* parent)
    : QWidget(parent) {
    setWindowTitle(name);
    auto* layout = new QVBoxLayout(this);
    layout->addStretch();
    auto* title = new QLabel(tr("Workspace “%1”").arg(name.toHtmlEscaped()), this);
    QFont font = title->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    title->setFont(font);
    title->setAlignment(Qt::AlignCenter);
    layout->addWidget(title);
    const Path start = ARXPath::fromStoredText(ARXConf::settings_default_directory().value());
    auto* detail =
        new QLabel(tr("Panes open at %1").arg(ARXPath::display(start).toHtmlEscaped()), this);
    detail->setAlignment(Qt::AlignCenter);
    layout->addWidget(detail);
    layout->addStretch();

    const QRect available = QGuiApplication::primaryScreen()
                                ? QGuiApplication::primaryScreen()->availableGeometry()
                                : QRect(0, 0, 1280, 960);
    const QRect saved = data.frame.toAlignedRect();
    if (saved.width() > 100 && saved.height() > 100 && available.intersects(saved)) {
        setGeometry(saved);
    } else {
        resize(std::min(1280, available.width()), std::min(960, available.height()));
    }
}
