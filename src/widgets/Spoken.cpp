// SPDX-License-Identifier: MIT
#include "widgets/Spoken.h"

#include "widgets/Named.h"
#include "widgets/PlainText.h"

#include <QComboBox>
#include <QLabel>

using namespace Qt::StringLiterals;

namespace kse {

void setSpokenName(QWidget* widget, const QString& name)
{
    if (name != widget->accessibleName()) {
        widget->setAccessibleName(name);
    }
}

void setSpokenDescription(QWidget* widget, const QString& description)
{
    if (description != widget->accessibleDescription()) {
        widget->setAccessibleDescription(description);
    }
}

void setSpokenLabel(QComboBox* box, const QString& name)
{
    box->setAccessibleName(name);
    // Qt finds a label only if it is a sibling.
    auto* label = named(u"spokenLabel"_s, new QLabel(asCaption(name), box->parentWidget()));
    label->setTextFormat(Qt::PlainText);
    label->setBuddy(box);
    label->hide();
    QObject::connect(box, &QObject::destroyed, label, &QObject::deleteLater);
}

} // namespace kse
