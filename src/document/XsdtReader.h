// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kse {

struct XsdtDocument;

/// Fills the empty `document` from the decoded text of a settings file; leaves `defaultLayout`
/// alone. On failure `error`, unless null, gets the reason, mostly with the line and column where
/// the reader stood, and the document is left as far as it was built.
///
/// The format looks like XML but is narrower:
///
///     file    = prologue "<xsdt" anything ">" content "</xsdt" space ">" space
///     content = { space (group | value) } space
///     group   = "<i" K ">" content "</i" space ">"  |  "<i" K "/>"
///     value   = "<v" K T V "/>"  |  "<v" K T ">" text "</v>"
///
/// - The prologue is anything without "<xsdt". The root's tag ends at the first ">", even at one
///   in quotes, and can't be the empty form.
/// - K, T and V are the attributes `k`, `t` and `v`, in any order and with white space around each
///   part. There are no others; of a repeated one the last counts. The quotes are ' or ", and what
///   is between them may hold anything but the same quote. `t` is one UTF-16 code unit, once
///   decoded.
/// - `text` is everything up to the next "</v>" and holds no "<". White space in it is kept, as it
///   is in attributes.
/// - Attributes and text hold the references &amp; &lt; &gt; &quot; &apos; and those by number:
///   &#65; or &#x41;, digits only, 1 to 1114111. A surrogate's number gives that code unit. At most
///   eleven characters stand between "&" and ";".
/// - There are no comments, instructions, declarations or CDATA after the root's start tag.
[[nodiscard]] bool readXsdt(const QString& text, XsdtDocument& document, QString* error);

} // namespace kse
