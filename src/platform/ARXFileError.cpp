#include "platform/ARXFileError.h"

#include <QCoreApplication>

#include <cerrno>
#include <cstring>

ARXFileError::ARXFileError(int errnum, int code, Path path, QString message)
    : errnum(errnum), code(code), path(std::move(path)), message(std::move(message)) {
    _what = this->path + ": " + this->message.toStdString();
}

ARXFileError ARXFileError::fromErrno(int errnum, const Path& path, Access access) {
    int code = errnum;
    switch (errnum) {
    case EACCES:
    case EPERM:
        code = access == Access::reading ? kNoReadPermission : kNoWritePermission;
        break;
    case EEXIST:
        code = kAlreadyExists;
        break;
    case EBUSY:
        code = kBusy;
        break;
    default:
        break;
    }
    return ARXFileError(errnum, code, path, QString::fromLocal8Bit(std::strerror(errnum)));
}

QString ARXFileError::text() const {
    return QCoreApplication::translate("Atrium", "“%1”: %2").arg(ARXPath::display(path), message);
}

ARXFileError ARXFileError::relocated(const Path& hidden, const Path& shown) const {
    if (path != hidden && !path.starts_with(hidden + "/")) {
        return *this;
    }
    return ARXFileError(errnum, code, shown + path.substr(hidden.size()), message);
}
