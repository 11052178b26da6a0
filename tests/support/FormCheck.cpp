#include "tests/support/FormCheck.h"

#include <QVariant>

namespace {

QString caption(const QWidget *widget)
{
    const QVariant title = widget->property("title");
    return title.isValid() ? title.toString() : widget->property("text").toString();
}

} // namespace

namespace support {

QString compareForm(const QWidget *page, std::initializer_list<FormRow> rows)
{
    QString differences;
    const auto differ = [&](const char *name, const char *what, const QString &is) {
        differences += QStringLiteral("%1: %2 is \"%3\"\n")
                           .arg(QString::fromLatin1(name), QString::fromLatin1(what), is);
    };
    for (const FormRow &row : rows) {
        const auto *widget = page->findChild<QWidget *>(QString::fromLatin1(row.name));
        if (!widget) {
            differ(row.name, "widget", QStringLiteral("missing"));
            continue;
        }
        if (!widget->inherits(row.kind))
            differ(row.name, "kind", QString::fromLatin1(widget->metaObject()->className()));
        if (caption(widget) != QString::fromUtf8(row.caption))
            differ(row.name, "caption", caption(widget));
        if (widget->toolTip() != QString::fromUtf8(row.toolTip))
            differ(row.name, "tool-tip", widget->toolTip());
    }
    return differences;
}

} // namespace support
