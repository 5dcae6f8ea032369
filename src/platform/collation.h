#pragma once

#include <QCollator>
#include <QLocale>
#include <QString>

/// Locale-aware comparison of names and categories: the user's locale, case-
/// and accent-sensitive, so "apple" and "Apple" are different texts. Every
/// comparison of names and categories goes through here, so tests can pin a
/// locale with setLocale().
class Collation {
public:
    static Collation &instance();

    void setLocale(const QLocale &locale);
    QLocale locale() const { return m_collator.locale(); }

    /// <0, 0 or >0 as a sorts before, equal to or after b.
    int compare(QStringView a, QStringView b) const { return m_collator.compare(a, b); }
    bool equal(QStringView a, QStringView b) const { return compare(a, b) == 0; }
    /// A key whose byte comparison agrees with compare(); for sorting many texts.
    QCollatorSortKey sortKey(const QString &text) const { return m_collator.sortKey(text); }

private:
    Collation();
    QCollator m_collator;
};
