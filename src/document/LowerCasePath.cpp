// SPDX-License-Identifier: MIT
#include "document/LowerCasePath.h"

namespace kse {

void appendLowerCase(QString& text, const QString& addition)
{
    const qsizetype start = text.size();
    text.resize(start + addition.size());
    QChar* const out = text.data() + start;
    const QChar* const in = addition.constData();
    // No early exit, so that the compiler can vectorise the loop.
    char16_t bits = 0;
    for (qsizetype i = 0; i < addition.size(); ++i) {
        const char16_t unit = in[i].unicode();
        bits |= unit;
        out[i] = QChar(char16_t(unit >= u'A' && unit <= u'Z' ? unit + 0x20 : unit));
    }
    if (bits >= 0x80) {
        text.truncate(start);
        text += addition.toLower();
    }
}

const QString& LowerCasePath::moveTo(const XsdtNode& node)
{
    m_path.truncate(m_groups.ofParent(node));
    if (!m_path.isEmpty()) {
        m_path += u'/';
    }
    appendLowerCase(m_path, node.key);
    if (node.kind == XsdtNode::Kind::Group) {
        m_groups.enter(node, m_path.size());
    }
    return m_path;
}

} // namespace kse
