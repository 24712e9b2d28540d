#pragma once

#include "model/ARXItemFacts.h"

#include <QDialog>

#include <vector>

class QLabel;

// The properties window of one item: name, kind, size (a folder's measured in the background),
// where it is, dates, permissions and owners. An item that cannot be read says so, with its path
// and the reason. Not modal: several can stay open beside the workspace.
class ARXPropertiesDialog : public QDialog {
    Q_OBJECT

public:
    // Items beyond this many get no window of their own: a selection of thousands would flood
    // the screen.
    static constexpr size_t kMaximumWindows = 12;

    explicit ARXPropertiesDialog(const Path& path, QWidget* parent = nullptr);

    // One window for each item, up to kMaximumWindows, shown and deleted when closed.
    static std::vector<ARXPropertiesDialog*> showFor(const std::vector<Path>& paths,
                                                     QWidget* parent = nullptr);

    const ARXItemFacts& facts() const { return _facts; }
    QString sizeText() const;
    bool isMeasuring() const { return _measuring; }

Q_SIGNALS:
    // A folder's size is known.
    void measured();

private:
    void measureFolder();

    ARXItemFacts _facts;
    QLabel* _size = nullptr;
    bool _measuring = false;
};
