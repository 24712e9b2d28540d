#include "ui/ARXFileClipboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QUrl>

namespace {

const QString kUriList = QStringLiteral("text/uri-list");
const QString kGnomeCopied = QStringLiteral("x-special/gnome-copied-files");
const QString kKdeCut = QStringLiteral("application/x-kde-cutselection");

std::vector<Path> pathsOfLines(const QByteArray& text) {
    std::vector<Path> paths;
    for (const QByteArray& line : text.split('\n')) {
        Path path = ARXFileClipboard::localPath(line);
        if (!path.empty()) {
            paths.push_back(std::move(path));
        }
    }
    return paths;
}

} // namespace

Path ARXFileClipboard::localPath(const QByteArray& line) {
    const QByteArray uri = line.trimmed();
    if (uri.isEmpty() || uri.startsWith('#')) {
        return {};
    }
    QByteArray rest;
    if (uri.startsWith("file:///")) {
        rest = uri.mid(7);
    } else if (uri.startsWith("file://localhost/")) {
        rest = uri.mid(16);
    } else {
        return {};
    }
    // Strip a query or fragment; a "?" or "#" in a name is always percent-encoded.
    const qsizetype end = rest.indexOf('?') >= 0 ? rest.indexOf('?') : rest.indexOf('#');
    if (end >= 0) {
        rest.truncate(end);
    }
    Path path = QByteArray::fromPercentEncoding(rest).toStdString();
    if (path.empty() || path.find('\0') != Path::npos) {
        return {};
    }
    return ARXPath::normalized(path);
}

QByteArray ARXFileClipboard::fileUri(const Path& path) {
    return "file://" + QByteArray::fromStdString(path).toPercentEncoding("/");
}

QMimeData* ARXFileClipboard::makeMimeData(const std::vector<Path>& paths, bool cut) {
    auto* data = new QMimeData;
    QByteArray uris;
    QByteArray text;
    for (const Path& path : paths) {
        uris += fileUri(path) + "\r\n";
        if (!text.isEmpty()) {
            text += '\n';
        }
        text += ARXPath::display(path).toUtf8();
    }
    data->setData(kUriList, uris);
    QByteArray gnome = cut ? "cut" : "copy";
    for (const Path& path : paths) {
        gnome += '\n' + fileUri(path);
    }
    data->setData(kGnomeCopied, gnome);
    if (cut) {
        data->setData(kKdeCut, "1");
    }
    data->setText(QString::fromUtf8(text));
    return data;
}

ARXFileClipboard::Contents ARXFileClipboard::read(const QMimeData* data) {
    Contents contents;
    if (!data) {
        return contents;
    }
    if (data->hasFormat(kGnomeCopied)) {
        const QByteArray gnome = data->data(kGnomeCopied);
        const qsizetype newline = gnome.indexOf('\n');
        const QByteArray verb = (newline < 0 ? gnome : gnome.left(newline)).trimmed();
        contents.cut = verb == "cut";
        if (!data->hasFormat(kUriList) && newline >= 0) {
            contents.paths = pathsOfLines(gnome.mid(newline + 1));
        }
    }
    if (data->hasFormat(kKdeCut) && data->data(kKdeCut).trimmed() == "1") {
        contents.cut = true;
    }
    if (data->hasFormat(kUriList)) {
        contents.paths = pathsOfLines(data->data(kUriList));
    }
    return contents;
}

bool ARXFileClipboard::hasFiles(const QMimeData* data) {
    return !read(data).paths.empty();
}

void ARXFileClipboard::put(const std::vector<Path>& paths, bool cut) {
    QGuiApplication::clipboard()->setMimeData(makeMimeData(paths, cut));
}

ARXFileClipboard::Contents ARXFileClipboard::current() {
    return read(QGuiApplication::clipboard()->mimeData());
}

void ARXFileClipboard::replaceCut(const Contents& pasted, const std::vector<Path>& left) {
    const Contents now = current();
    if (!now.cut || now.paths != pasted.paths || left == pasted.paths) {
        return;
    }
    if (left.empty()) {
        QGuiApplication::clipboard()->clear();
    } else {
        put(left, true);
    }
}
