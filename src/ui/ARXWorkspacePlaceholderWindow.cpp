#include "ui/ARXWorkspacePlaceholderWindow.h"

#include "ui/ARXWidgetOperationPresenter.h"

#include <QGuiApplication>
#include <QScreen>
#include <QVBoxLayout>

ARXWorkspacePlaceholderWindow::ARXWorkspacePlaceholderWindow(const QString& name,
                                                             const ARXAtriumData& data,
                                                             QWidget* parent)
    : QWidget(parent), _presenter(new ARXWidgetOperationPresenter(this)), _name(name) {
    setWindowTitle(name);
    ARXOperationPresenter::setMain(_presenter);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);

    _pane = new ARXSpaceSquareView(this);
    _pane->setDelegate(this);
    _pane->setPresenter(_presenter);
    _pane->setLone(true);
    layout->addWidget(_pane);
    if (data.spaces[0]) {
        _pane->applyData(*data.spaces[0]);
    } else {
        _pane->resetToDefaults();
    }
    _pane->setActivated(true);

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

bool ARXWorkspacePlaceholderWindow::squareViewPerform(ARXSpaceSquareView&, ARXActionType,
                                                      const ARXFileEntryList&) {
    return false;
}

void ARXWorkspacePlaceholderWindow::squareViewActivated(ARXSpaceSquareView&) {}

void ARXWorkspacePlaceholderWindow::squareViewRootChanged(ARXSpaceSquareView& pane) {
    if (pane.root()) {
        setWindowTitle(_name + QStringLiteral(" — ") + ARXPath::display(pane.root()->path()));
    }
}

bool ARXWorkspacePlaceholderWindow::squareViewKey(ARXSpaceSquareView&, QKeyEvent*) {
    return false;
}
