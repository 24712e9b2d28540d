#pragma once

#include <QTreeView>

#include <array>
#include <functional>

class QKeyEvent;
class QDropEvent;

// The look of the list at one level of detail: the icon's side, the gap before the label and the
// least height of a row (Qt adds the padding its style wants on top).
struct ARXSpaceListViewLevelData {
    double iconSize;
    double labelLeft;
    double itemHeight;
};

// The tree widget of the list view, set up as a file manager's detail list: rows of one height,
// whole rows selected, several at once, folders unfolding in place, a sortable header whose first
// section (the name) stays first and shown. Nothing is edited by a click or a key; a rename starts
// only through `beginEditingName`.
class ARXSpaceListOutlineView : public QTreeView {
    Q_OBJECT

public:
    // Offered every key press first; true means the key was handled (the pane's hotkeys).
    using KeyHandler = std::function<bool(QKeyEvent*)>;
    // Asked while a drag moves over the view (perform false) and at the drop (perform true):
    // the action it would take, or IgnoreAction to refuse.
    using DropHandler = std::function<Qt::DropAction(QDropEvent*, bool perform)>;
    // A drag of the selected rows begins, and ends (dropped anywhere or given up).
    using DragHandler = std::function<void(bool started)>;

    explicit ARXSpaceListOutlineView(QWidget* parent = nullptr);
    ~ARXSpaceListOutlineView() override;

    // The levels of detail, indexed by `lod`.
    static const std::array<ARXSpaceListViewLevelData, 2>& levels();

    // Icon size and row height of a level; values past the table keep the last level.
    void setLod(int lod);
    int lod() const { return _lod; }
    // The height every row gets at the present level.
    int rowHeight() const;

    // Opens the name editor on the index's row; false when there is no such row.
    bool beginEditingName(const QModelIndex& index);

    void setKeyHandler(KeyHandler handler) { _keyHandler = std::move(handler); }
    void setDropHandler(DropHandler handler) { _dropHandler = std::move(handler); }
    void setDragHandler(DragHandler handler) { _dragHandler = std::move(handler); }

    void setModel(QAbstractItemModel* model) override;

Q_SIGNALS:
    // The name editor closed, committed or not.
    void editingEnded();
    void focusReceived();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void fixNameSection();

    int _lod = 0;
    KeyHandler _keyHandler;
    DropHandler _dropHandler;
    DragHandler _dragHandler;
};
