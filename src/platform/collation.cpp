#include "platform/collation.h"

Collation &Collation::instance()
{
    static Collation collation;
    return collation;
}

Collation::Collation()
{
    setLocale(QLocale::system());
}

void Collation::setLocale(const QLocale &locale)
{
    m_collator = QCollator(locale);
    m_collator.setCaseSensitivity(Qt::CaseSensitive);
    m_collator.setNumericMode(false);
    m_collator.setIgnorePunctuation(false);
}
