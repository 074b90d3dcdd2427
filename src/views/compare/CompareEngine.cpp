// SPDX-License-Identifier: MIT
#include "views/compare/CompareEngine.h"

#include "document/Depth.h"
#include "document/OpenGroups.h"
#include "document/ShortPath.h"
#include "document/TreeWalk.h"
#include "document/XsdtDocument.h"

#include <QHash>

#include <vector>

using namespace Qt::StringLiterals;

namespace kse {

namespace {

/// Gives each path a number. Equal paths have the same number, no matter which keys they are made
/// of. A path is identified by the number of the part before its last slash and by the segment
/// after it. So no path is ever built, and each key is hashed only once, even in a deep file. The
/// segments point into the keys that were added.
class PathNumbers
{
public:
    static constexpr qsizetype emptyPath = 0;
    static constexpr qsizetype unknown = -1;

    explicit PathNumbers(qsizetype expected) { m_numbers.reserve(expected); }

    /// One more than the greatest number.
    qsizetype count() const { return m_numbers.size() + 1; }

    /// The number of the path of `key` below the path `parent`.
    qsizetype add(qsizetype parent, QStringView key)
    {
        return follow(parent, key, [this](const Step& step) {
            qsizetype& number = m_numbers[step];
            if (number == 0) {
                m_steps.push_back(step);
                number = m_numbers.size();
            }
            return number;
        });
    }

    /// The same, but `unknown` for a path that is neither one that was added nor the start of one.
    qsizetype find(qsizetype parent, QStringView key)
    {
        return follow(parent, key, [this](const Step& step) {
            // In the order in which the paths were added, as in files that differ little, a look
            // at the next one is enough.
            const auto next = static_cast<std::size_t>(m_found);
            m_found = next < m_steps.size() && m_steps[next] == step
                          ? m_found + 1
                          : m_numbers.value(step, unknown);
            return m_found;
        });
    }

private:
    struct Step
    {
        qsizetype parent;
        QStringView segment;

        bool operator==(const Step& other) const
        {
            return parent == other.parent && segment == other.segment;
        }
        friend size_t qHash(const Step& step, size_t seed)
        {
            return qHash(step.segment, qHash(step.parent, seed));
        }
    };

    template <typename Take>
    static qsizetype follow(qsizetype parent, QStringView key, Take&& take)
    {
        // Below the empty path no slash precedes a key, so an empty key adds nothing.
        if (parent == unknown || (parent == emptyPath && key.isEmpty())) {
            return parent;
        }
        qsizetype number = parent;
        for (const QStringView segment : key.tokenize(u'/')) {
            number = take(Step{number, segment}); // all is unknown below `unknown`
        }
        return number;
    }

    QHash<Step, qsizetype> m_numbers;
    std::vector<Step> m_steps; ///< By their numbers, which begin with 1.
    qsizetype m_found = emptyPath;
};

struct NumberedValue
{
    XsdtNode* node;
    qsizetype path;
    const XsdtNode* top; ///< At or above it: the last key that is always shown.
};

/// The path to show for a value.
QString shownPath(const XsdtNode& node, const XsdtNode& top)
{
    return node.depth > deepestShownLevel ? top.path() + u'/' + shortPath(node) : node.path();
}

/// The values of `document` that aren't marked. `number` returns the number of the path of a key
/// below the path with a given number.
template <typename Number>
std::vector<NumberedValue> numberedValues(const XsdtDocument& document, Number&& number)
{
    std::vector<NumberedValue> values;
    struct Group
    {
        qsizetype path;
        const XsdtNode* top;
    };
    constexpr quint16 topDepth = 3; // as many keys as a heading has at most
    OpenGroups<Group> groups(document.root, {PathNumbers::emptyPath, nullptr});
    walkTree(const_cast<XsdtNode&>(document.root), [&](XsdtNode& node) {
        if (node.markedForDeletion) {
            return Walk::Over;
        }
        const Group& parent = groups.ofParent(node);
        const Group here{number(parent.path, node.key), node.depth > topDepth ? parent.top : &node};
        if (node.kind == XsdtNode::Kind::Value) {
            values.push_back({&node, here.path, here.top});
        } else {
            groups.enter(node, here);
        }
        return Walk::Into;
    });
    return values;
}

} // namespace

QList<CompareEntry> compareDocuments(const XsdtDocument& thisDocument,
                                     const XsdtDocument& otherDocument)
{
    qsizetype count = 0;
    walkTree(otherDocument.root, [&count](const XsdtNode&) {
        ++count;
        return Walk::Into;
    });
    PathNumbers numbers(count);
    const std::vector<NumberedValue> others =
        numberedValues(otherDocument, [&](qsizetype parent, const QString& key) {
            return numbers.add(parent, key);
        });
    const std::vector<NumberedValue> values =
        numberedValues(thisDocument, [&](qsizetype parent, const QString& key) {
            return numbers.find(parent, key);
        });

    std::vector<XsdtNode*> otherByPath(static_cast<size_t>(numbers.count()));
    for (const NumberedValue& other : others) {
        otherByPath[static_cast<size_t>(other.path)] = other.node;
    }

    QList<CompareEntry> entries;
    std::vector<bool> isHere(otherByPath.size());
    for (const auto& [node, path, top] : values) {
        XsdtNode* other = nullptr;
        if (path != PathNumbers::unknown) {
            isHere[static_cast<size_t>(path)] = true;
            other = otherByPath[static_cast<size_t>(path)];
        }
        if (!other) {
            entries.append({shownPath(*node, *top), CompareState::OnlyThis, node, nullptr});
        } else if (node->typeCode != other->typeCode || node->value != other->value) {
            entries.append({shownPath(*node, *top), CompareState::Different, node, other});
        }
    }
    for (const auto& [node, path, top] : others) {
        if (!isHere[static_cast<size_t>(path)]) {
            entries.append({shownPath(*node, *top), CompareState::OnlyOther, nullptr, node});
        }
    }
    return entries;
}

GroupedPath groupedPath(const QString& path)
{
    const int depth = path.startsWith("Global/Preferences/"_L1) ? 3 : 2;
    qsizetype end = -1;
    for (int i = 0; i < depth; ++i) {
        const qsizetype slash = path.indexOf(u'/', end + 1);
        if (slash < 0) {
            break;
        }
        end = slash;
    }
    if (end < 0) {
        return {u"(top level)"_s, path};
    }
    return {path.first(end), path.sliced(end + 1)};
}

} // namespace kse
