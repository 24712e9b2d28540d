#pragma once

#include "platform/ARXPath.h"

#include <QString>

#include <exception>
#include <string>

// A failed file call: the errno, the path it failed on and the system's words for it. The file
// layer throws it; the model keeps it (a folder's last listing failure). `code` is the number
// the rest of Atrium tests against, the same for every file system:
//   257 no permission to read (EACCES, EPERM while reading), 513 no permission to write,
//   516 already exists (EEXIST), 512 an exchange that failed, -47 busy (EBUSY), 3328 no trash
// on the item's volume; any other failure carries its errno as code.
class ARXFileError : public std::exception {
public:
    static constexpr int kNoReadPermission = 257;
    static constexpr int kReplaceFailed = 512;
    static constexpr int kNoWritePermission = 513;
    static constexpr int kAlreadyExists = 516;
    static constexpr int kBusy = -47;
    static constexpr int kNoTrash = 3328;

    enum class Access : uint8_t { reading, writing };

    ARXFileError(int errnum, int code, Path path, QString message);

    // The error of errno `errnum` on `path`, coded for a read or a write.
    static ARXFileError fromErrno(int errnum, const Path& path, Access access = Access::reading);

    int errnum = 0;
    int code = 0;
    Path path;
    QString message; // strerror's text

    // For the user: the path and the reason, "“/home/me/Private”: Permission denied".
    QString text() const;

    // The same error told about `shown` where it names `hidden` or an item inside it: the failure
    // of an item built or set aside under a temporary name names what the user chose.
    ARXFileError relocated(const Path& hidden, const Path& shown) const;

    const char* what() const noexcept override { return _what.c_str(); }

private:
    std::string _what;
};
