#include "ui/ARXWorkspacePlaceholderWindow.h"

#include "app/ARXConf.h"
#include "model/ARXFileEntry.h"
#include "ui/spaceviews/ARXSpaceListView.h"

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
    layout->setContentsMargins(0, 0, 0, 0);

    const Path start = ARXPath::fromStoredText(ARXConf::settings_default_directory().value());
    const ARXFileEntryRef root = ARXFileEntry::create(start, nullptr, true);
    if (root->isExists && root->expanded && !root->prepareError) {
        auto* list = new ARXSpaceListView(this);
        list->bindRoot(root);
        layout->addWidget(list);
    } else {
        const QString why = root->prepareError
                                ? root->prepareError->text()
                                : tr("“%1” does not exist.").arg(ARXPath::display(start));
        auto* message = new QLabel(why, this);
        message->setAlignment(Qt::AlignCenter);
        message->setTextFormat(Qt::PlainText);
        layout->addWidget(message);
    }

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
