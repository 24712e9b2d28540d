#include "ui/ARXPropertiesDialog.h"

#include "ops/ARXFileOperationSize.h"
#include "ui/ARXFileIcon.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QPointer>
#include <QScreen>
#include <QStyle>
#include <QVBoxLayout>

#include <thread>

namespace {

QString dateText(const std::optional<double>& seconds) {
    if (!seconds) {
        return QStringLiteral("—");
    }
    const QDateTime date = QDateTime::fromMSecsSinceEpoch(qint64(*seconds * 1000.0));
    return QLocale().toString(date, QLocale::LongFormat);
}

// Long texts (paths, an error) wrap; a wrapping label asks for more height than it needs, so
// the short ones do not.
QLabel* selectableLabel(const QString& text, QWidget* parent, bool wrap = false) {
    auto* label = new QLabel(text, parent);
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setWordWrap(wrap);
    return label;
}

} // namespace

ARXPropertiesDialog::ARXPropertiesDialog(const Path& path, QWidget* parent)
    : QDialog(parent), _facts(ARXItemFacts::read(path)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("%1 Properties").arg(_facts.name));
    auto* layout = new QVBoxLayout(this);

    auto* header = new QHBoxLayout;
    auto* icon = new QLabel(this);
    icon->setPixmap(ARXFileIcon::forPath(path).pixmap(64, 64));
    header->addWidget(icon, 0, Qt::AlignTop);
    auto* titles = new QVBoxLayout;
    QLabel* name = selectableLabel(_facts.name, this);
    QFont bold = name->font();
    bold.setBold(true);
    name->setFont(bold);
    titles->addWidget(name);
    titles->addWidget(selectableLabel(_facts.error ? *_facts.error : _facts.kind, this,
                                      _facts.error.has_value()));
    header->addLayout(titles, 1);
    layout->addLayout(header);

    if (!_facts.error) {
        auto* form = new QFormLayout;
        form->setLabelAlignment(Qt::AlignRight);
        layout->addLayout(form);
        _size = selectableLabel(QString(), this);
        form->addRow(tr("Size:"), _size);
        // A link to a folder has a size of its own; the folder is measured where it is.
        if (_facts.isFolder && !_facts.linkTarget) {
            measureFolder();
        } else {
            _size->setText(ARXItemFacts::sizeText(_facts.size));
        }
        auto row = [&](const QString& title, const QString& value, bool wrap = false) {
            form->addRow(title, selectableLabel(value, this, wrap));
        };
        row(tr("Where:"), _facts.where, true);
        if (_facts.linkTarget) {
            row(tr("Link to:"), *_facts.linkTarget, true);
        }
        if (_facts.created) {
            row(tr("Created:"), dateText(_facts.created));
        }
        row(tr("Modified:"), dateText(_facts.modified));
        row(tr("Accessed:"), dateText(_facts.accessed));
        row(tr("Permissions:"), _facts.permissions);
        row(tr("Owner:"), _facts.owner);
        row(tr("Group:"), _facts.group);
    }

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    layout->addStretch(1);
    layout->addWidget(buttons);
    setMinimumWidth(380);
}

QString ARXPropertiesDialog::sizeText() const {
    return _size ? _size->text() : QString();
}

void ARXPropertiesDialog::measureFolder() {
    _measuring = true;
    _size->setText(tr("Calculating…"));
    // A large tree takes a while: it is walked on a thread of its own, and the answer finds the
    // window only if it is still open.
    QPointer<ARXPropertiesDialog> self(this);
    const Path path = _facts.path;
    std::thread([self, path] {
        const ARXFileOperationSize::Measure measure = ARXFileOperationSize::measure(path);
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [self, measure] {
                if (!self) {
                    return;
                }
                QString text = ARXItemFacts::sizeText(uint64_t(measure.size));
                if (measure.error) {
                    text += QLatin1Char('\n') + tr("at least; %1").arg(measure.error->text());
                }
                self->_size->setText(text);
                self->_measuring = false;
                Q_EMIT self->measured();
            },
            Qt::QueuedConnection);
    }).detach();
}

std::vector<ARXPropertiesDialog*> ARXPropertiesDialog::showFor(const std::vector<Path>& paths,
                                                               QWidget* parent) {
    std::vector<ARXPropertiesDialog*> dialogs;
    QPoint first;
    QRect area;
    int step = 0;
    for (const Path& path : paths) {
        if (dialogs.size() == kMaximumWindows) {
            break;
        }
        auto* dialog = new ARXPropertiesDialog(path, parent);
        dialog->setWindowFlag(Qt::Window, true);
        if (!dialogs.empty()) {
            // The windows cascade down and to the right from the first, each showing the title
            // of the one behind it; where the screen ends, the cascade starts again at the top.
            int index = int(dialogs.size());
            const int bottom = first.y() + dialog->sizeHint().height();
            if (!area.isEmpty() && step > 0 && bottom < area.bottom()) {
                index %= (area.bottom() - bottom) / step + 1;
            }
            dialog->move(first + QPoint(step, step) * index);
        }
        dialog->show();
        if (dialogs.empty()) {
            // Where Qt placed the first (over its parent, or centred) starts the cascade.
            first = dialog->pos();
            area = dialog->screen() ? dialog->screen()->availableGeometry() : QRect();
            step = dialog->style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, dialog) +
                   dialog->fontMetrics().height() / 2;
        }
        dialogs.push_back(dialog);
    }
    return dialogs;
}
