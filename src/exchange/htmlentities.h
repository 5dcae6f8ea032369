#pragma once

#include <QString>

/// HTML's named character references, which XML does not declare but many
/// programs put into their files anyway.
namespace HtmlEntities {

/// The character of an entity name ("eacute" gives "é"); empty when the name
/// is not one of HTML 4's 252.
QString resolve(QStringView name);

} // namespace HtmlEntities
