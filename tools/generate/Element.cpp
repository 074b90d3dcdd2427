// SPDX-License-Identifier: MIT
#include "Element.h"

#include <QList>

#include <algorithm>

namespace kse {

namespace {

void appendEscaped(QByteArray& out, const QByteArray& text)
{
    for (const char c : text) {
        switch (c) {
        case '"':
            out += "&quot;";
            break;
        case '&':
            out += "&amp;";
            break;
        case '\'':
            out += "&apos;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        default:
            out += c;
        }
    }
}

} // namespace

Element& Element::group(const QByteArray& path)
{
    Element* at = this;
    for (const QByteArray& name : path.split('/')) {
        const auto hasName = [&name](const Element& e) {
            return e.type == 0 && e.key == name;
        };
        const auto found = std::find_if(at->children.begin(), at->children.end(), hasName);
        if (found != at->children.end()) {
            at = &*found;
        } else {
            at->children.push_back({name, 0, {}, {}, false});
            at = &at->children.back();
        }
    }
    return *at;
}

void Element::set(const QByteArray& name, char typeCode, const QByteArray& text)
{
    for (Element& child : children) {
        if (child.type != 0 && child.key == name) {
            child.type = typeCode;
            child.value = text;
            return;
        }
    }
    children.push_back({name, typeCode, text, {}, false});
}

void Element::remove(const QByteArray& name)
{
    children.remove_if([&name](const Element& e) { return e.key == name; });
}

void Element::sort()
{
    children.sort([](const Element& a, const Element& b) { return a.key < b.key; });
    for (Element& child : children) {
        child.sort();
    }
}

QByteArray settingsHead(const QByteArray& comment)
{
    QByteArray head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    if (!comment.isEmpty()) {
        head += "<!-- " + comment + " -->\n";
    }
    head += "<xsdt version=\"1.0\" xmlns=\"http://www.pixinsight.com/xsdt\""
            " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\""
            " xsi:schemaLocation=\"http://www.pixinsight.com/xsdt"
            " http://pixinsight.com/xsdt/xsdt-1.0.xsd\">";
    return head;
}

QByteArray settingsTail()
{
    return "</xsdt>\n";
}

void appendGroupStart(QByteArray& out, const QByteArray& key)
{
    out += "<i k=\"";
    appendEscaped(out, key);
    out += "\">";
}

void appendValue(QByteArray& out, const QByteArray& key, char type, const QByteArray& value)
{
    out += "<v k=\"";
    appendEscaped(out, key);
    out += "\" t=\"";
    out += type;
    if (type == 's' || type == 'B') {
        out += "\">";
        appendEscaped(out, value);
        out += "</v>";
    } else {
        out += "\" v=\"";
        appendEscaped(out, value);
        out += "\"/>";
    }
}

void appendElement(QByteArray& out, const Element& element)
{
    if (element.type != 0) {
        appendValue(out, element.key, element.type, element.value);
        return;
    }
    appendGroupStart(out, element.key);
    if (element.children.empty() && element.selfClosing) {
        out.chop(1);
        out += "/>";
        return;
    }
    for (const Element& child : element.children) {
        appendElement(out, child);
    }
    out += "</i>";
}

} // namespace kse
