#include "model/ARXSpaceSquareViewMoveDirection.h"

#include <QCoreApplication>

namespace ARXSpaceSquareViewMove {

const std::array<ARXSpaceSquareViewMoveDirection, 8>& all() {
    using D = ARXSpaceSquareViewMoveDirection;
    static const std::array<D, 8> directions = {
        D::left, D::right, D::up, D::down, D::leftUp, D::leftDown, D::rightUp, D::rightDown,
    };
    return directions;
}

std::optional<ARXSpaceSquareViewMoveDirection> fromRaw(qint64 raw) {
    if (raw < 0 || raw >= qint64(all().size())) {
        return std::nullopt;
    }
    return all()[size_t(raw)];
}

QString title(ARXSpaceSquareViewMoveDirection direction) {
    // The English text is the key of the translation, so it is spelled out once per direction.
    switch (direction) {
    case ARXSpaceSquareViewMoveDirection::left:
        return QCoreApplication::translate("Atrium", "Left");
    case ARXSpaceSquareViewMoveDirection::right:
        return QCoreApplication::translate("Atrium", "Right");
    case ARXSpaceSquareViewMoveDirection::up:
        return QCoreApplication::translate("Atrium", "Up");
    case ARXSpaceSquareViewMoveDirection::down:
        return QCoreApplication::translate("Atrium", "Down");
    case ARXSpaceSquareViewMoveDirection::leftUp:
        return QCoreApplication::translate("Atrium", "Left Up");
    case ARXSpaceSquareViewMoveDirection::leftDown:
        return QCoreApplication::translate("Atrium", "Left Down");
    case ARXSpaceSquareViewMoveDirection::rightUp:
        return QCoreApplication::translate("Atrium", "Right Up");
    case ARXSpaceSquareViewMoveDirection::rightDown:
        return QCoreApplication::translate("Atrium", "Right Down");
    }
    return {};
}

} // namespace ARXSpaceSquareViewMove
