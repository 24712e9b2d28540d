#pragma once

#include <QSplitter>

// The split that carries a workspace's panes: a 1-pixel line between its children (Qt widens the
// grab area of so thin a handle on its own), and children that can't be collapsed away.
//
// While `isHandy` (true from creation), a change of the split's size is shared among the children
// in proportion to their sizes, so the sizes a layout set, or the user dragged, keep their shares
// as the window grows or shrinks. To that end the split clears the stretch factors of the children
// it takes (QSplitter shares by sizes only when no child has one). When not handy, stretch factors
// set afterwards apply as in any QSplitter.
class ARXHandySplitView : public QSplitter {
    Q_OBJECT

public:
    explicit ARXHandySplitView(Qt::Orientation orientation, QWidget* parent = nullptr);

    bool isHandy() const { return _handy; }
    void setHandy(bool handy);

protected:
    QSplitterHandle* createHandle() override;
    void childEvent(QChildEvent* event) override;

private:
    void clearStretch(QWidget* child);

    bool _handy = true;
};
