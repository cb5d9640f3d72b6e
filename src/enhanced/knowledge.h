#pragma once

// What the enhanced analysis knows about names, firms, places and labels. All of it comes
// from the readable lists in data/ (compiled in as a Qt resource); nothing is learnt.

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QStringView>

namespace zf::enhanced {

// Whole words plus endings of compound words, both lower-case.
struct WordList {
    QSet<QString> words;
    QStringList endings;
    bool has(QStringView lowerWord) const;
};

enum class LabelKind {
    Phone,
    Email,
    Web,
    Company,
    Name,
    FirstName,
    LastName,
    Contact,
    Role,
    Salutation,
    Title,
    Department,
    Street,
    Address2,
    Postcode,
    City,
    PostcodeCity,
    Country,
    Job,
    SkipBlock,
    SkipLine,
};

struct Label {
    LabelKind kind = LabelKind::SkipLine;
    QString qualifier; // phones: direct, main, second, fax, mobile
};

struct Salutation {
    QString german;
    bool addressee = false; // "Herrn": the letter's recipient
};

struct PostalPrefix {
    QString country;
    int digits = 0;
};

struct DialCode {
    QString code; // "+49"
    QString country;
    QStringList mobilePrefixes; // of the national number without trunk zero
};

struct Knowledge {
    QSet<QString> givenNames; // lower-case
    QHash<QString, Salutation> salutations;
    QSet<QString> degrees;       // as written
    QSet<QString> degreeFollows; // words that only continue a degree
    QSet<QString> degreesUpper;  // both, upper-cased, for all-caps lines
    QSet<QString> postNominals;  // letters only ever written behind a name, as written and upper
    QSet<QString> legalForms;
    QSet<QString> legalFormsUpper;
    WordList companyWords;
    WordList departmentWords;
    WordList jobWords;
    WordList streetWords;
    QSet<QString> streetLeadWords; // words that open a street name ("rue", "via")
    QSet<QString> noiseWords;
    QStringList noisePhrases;
    QSet<QString> closings; // whole closing lines, lower-case
    QStringList closingStems;
    QStringList openings;
    QStringList signWords; // in front of a signer's name
    QHash<QString, Label> labels;
    QList<std::pair<QString, Label>> labelPrefixes;
    QHash<QString, QString> countries; // lower-case name -> German name
    QHash<QString, PostalPrefix> postalPrefixes;
    // Postcode shapes ("NN-NNN") with the German names of their countries, "|" between.
    QList<std::pair<QString, QString>> postalFormats;
    QList<DialCode> dialCodes; // longest code first
    QHash<QString, QString> topLevelDomains;
    QSet<QString> usStates;
    // The keys of the word, country, salutation and noise lists in one set: a person's name
    // is checked against all of them for every word.
    QSet<QString> notNameWords;
    QHash<QString, QString> placeHints; // "town:zug", "canton:ZG", "word:grüezi" -> country

    const Label* label(const QString& lowerLabel) const;
};

// Loaded once, on first use.
const Knowledge& knowledge();

} // namespace zf::enhanced
