#include "platform/ARXPath.h"

#include <QByteArray>
#include <QStringDecoder>
#include <QUrl>

namespace ARXPath {

Path parentPath(std::string_view path) {
    const auto slash = path.rfind('/');
    if (slash == std::string_view::npos || slash == 0) {
        return "/";
    }
    return Path(path.substr(0, slash));
}

std::string lastComponent(std::string_view path) {
    if (path == "/") {
        return "/";
    }
    const auto slash = path.rfind('/');
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

Path join(std::string_view dir, std::string_view name) {
    while (!dir.empty() && dir.back() == '/') {
        dir.remove_suffix(1);
    }
    while (!name.empty() && name.front() == '/') {
        name.remove_prefix(1);
    }
    Path result;
    result.reserve(dir.size() + name.size() + 1);
    result.append(dir);
    result.push_back('/');
    result.append(name);
    return result;
}

Path normalized(std::string_view path) {
    while (path.size() > 1 && path.back() == '/') {
        path.remove_suffix(1);
    }
    return Path(path);
}

std::string extension(std::string_view name) {
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) {
        return {};
    }
    std::string ext(name.substr(dot + 1));
    if (isValidUtf8(ext)) {
        return display(ext).toLower().toStdString();
    }
    for (char& c : ext) {
        if (c >= 'A' && c <= 'Z') {
            c = char(c - 'A' + 'a');
        }
    }
    return ext;
}

bool isValidUtf8(std::string_view bytes) {
    // Fast path: plain ASCII is by far the most common.
    size_t i = 0;
    const size_t n = bytes.size();
    while (i < n) {
        const auto c = static_cast<unsigned char>(bytes[i]);
        if (c < 0x80) {
            ++i;
            continue;
        }
        int len = 0;
        unsigned int cp = 0;
        if ((c & 0xE0) == 0xC0) {
            len = 2;
            cp = c & 0x1F;
        } else if ((c & 0xF0) == 0xE0) {
            len = 3;
            cp = c & 0x0F;
        } else if ((c & 0xF8) == 0xF0) {
            len = 4;
            cp = c & 0x07;
        } else {
            return false;
        }
        if (i + len > n) {
            return false;
        }
        for (int k = 1; k < len; ++k) {
            const auto cc = static_cast<unsigned char>(bytes[i + k]);
            if ((cc & 0xC0) != 0x80) {
                return false;
            }
            cp = (cp << 6) | (cc & 0x3F);
        }
        // Overlong forms, surrogates and values past U+10FFFF are not UTF-8.
        if ((len == 2 && cp < 0x80) || (len == 3 && cp < 0x800) || (len == 4 && cp < 0x10000) ||
            (cp >= 0xD800 && cp <= 0xDFFF) || cp > 0x10FFFF) {
            return false;
        }
        i += len;
    }
    return true;
}

bool isCloudPlaceholderName(std::string_view name) {
    return name.starts_with('.') && name.ends_with(".icloud");
}

QString display(std::string_view bytes) {
    return QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
}

Path fromText(const QString& text) {
    const QByteArray utf8 = text.toUtf8();
    return Path(utf8.constData(), size_t(utf8.size()));
}

std::string caseFolded(std::string_view path) {
    if (isValidUtf8(path)) {
        return fromText(display(path).toCaseFolded());
    }
    std::string folded(path);
    for (char& c : folded) {
        if (c >= 'A' && c <= 'Z') {
            c = char(c - 'A' + 'a');
        }
    }
    return folded;
}

namespace {
// Besides letters, digits and "-._~", the characters a URL path keeps unescaped. ";" is not
// among them: it once separated path parameters.
const QByteArray kPathAllowed = QByteArrayLiteral("!$&'()*+,/:=@");
} // namespace

QString fileURLString(std::string_view path) {
    QByteArray bytes(path.data(), qsizetype(path.size()));
    if (!bytes.endsWith('/')) {
        bytes.append('/');
    }
    return QStringLiteral("file://") + QString::fromLatin1(bytes.toPercentEncoding(kPathAllowed));
}

Path fromFileURL(const QString& url) {
    static const QString scheme = QStringLiteral("file://");
    if (!url.startsWith(scheme, Qt::CaseInsensitive)) {
        return {};
    }
    QString rest = url.mid(scheme.size());
    // "file://host/path": only an empty host or "localhost" names this machine.
    if (!rest.startsWith(u'/')) {
        const auto slash = rest.indexOf(u'/');
        if (slash < 0 || rest.left(slash).compare(u"localhost", Qt::CaseInsensitive) != 0) {
            return {};
        }
        rest = rest.mid(slash);
    }
    const QByteArray decoded = QByteArray::fromPercentEncoding(rest.toUtf8());
    return normalized(std::string_view(decoded.constData(), size_t(decoded.size())));
}

QString toStoredText(std::string_view path) {
    if (isValidUtf8(path)) {
        return display(path);
    }
    QString url = fileURLString(path);
    if (path.empty() || path.back() != '/') {
        url.chop(1);
    }
    return url;
}

Path fromStoredText(const QString& text) {
    if (text.startsWith(QStringLiteral("file://"), Qt::CaseInsensitive)) {
        return fromFileURL(text);
    }
    return fromText(text);
}

} // namespace ARXPath
