// The enhanced analysis on invented address texts: what a careful person would file, one
// table per thing it has to know; and that it keeps the classic run's contract.

#include "filedcontact.h"
#include "settings/settings.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QTest>

using namespace zf;

using namespace zf::test;

class TestEnhanced : public QObject {
    Q_OBJECT

private slots:
    void names_data();
    void names() { check(); }
    void companies_data();
    void companies() { check(); }
    void streets_data();
    void streets() { check(); }
    void postcodes_data();
    void postcodes() { check(); }
    void phones_data();
    void phones() { check(); }
    void imprints_data();
    void imprints() { check(); }
    void threads_data();
    void threads() { check(); }
    void forms_data();
    void forms() { check(); }

    void keepsTheClassicContract_data();
    void keepsTheClassicContract();
    void extraDefinitionsAsInClassic();
    void unplacedLineHasNoField();
    void traceExplainsEveryLine();
    void modeSwitch();
    void settingsSwitchItOn_data();
    void settingsSwitchItOn();
    void oddInputEnds_data();
    void oddInputEnds();

private:
    void check()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(analyse(text), normalised(expected));
    }
};

void TestEnhanced::names_data()
{
    textAndExpected();
    addCase("contact label without colon in a letter, recipient under a lone salutation",
            "Wasserverband Eider · Schleusenweg 1 · 24768 Rendsburg\n\nFrau\nGesa Thomsen\n"
            "Deichstraße 4\n25761 Büsum\n\nIhr Ansprechpartner\nHerr Jens Petersen\n"
            "Telefon 04331 66 20-14\n",
            "Firma=Wasserverband Eider | Anrede=Herr | Vorname=Jens | Nachname=Petersen | "
            "Kontakt=Jens Petersen | Adresse=Schleusenweg 1 | PLZ=24768 | Ort=Rendsburg | "
            "Land=Deutschland | Telefon=04331 66 20-14");
    addCase("divider line over the firm",
            "Beste Grüße\nLena Kappel\n---\nKappel Medien GmbH\nHafenstraße 3\n"
            "18055 Rostock\n",
            "Vorname=Lena | Nachname=Kappel | Kontakt=Lena Kappel | Firma=Kappel Medien GmbH | "
            "Adresse=Hafenstraße 3 | PLZ=18055 | Ort=Rostock | Land=Deutschland");
    addCase("signed on behalf",
            "Mit freundlichen Grüßen\ni. V. Jonas Brandtner\nBrandtner Sanitär GmbH\n"
            "Quellenweg 8\n94032 Passau\n",
            "Vorname=Jonas | Nachname=Brandtner | Kontakt=Jonas Brandtner | "
            "Firma=Brandtner Sanitär GmbH | Adresse=Quellenweg 8 | PLZ=94032 | Ort=Passau | "
            "Land=Deutschland");
    addCase("surname in the domain, job below",
            "Ottokar Wendelstein\nDachdeckermeister\n\nDachbau Nord GmbH\nHafenweg 2\n"
            "25813 Husum\nwww.dachbau-wendelstein.example.de\n",
            "Vorname=Ottokar | Nachname=Wendelstein | Kontakt=Ottokar Wendelstein | "
            "Firma=Dachbau Nord GmbH | Adresse=Hafenweg 2 | PLZ=25813 | Ort=Husum | "
            "Land=Deutschland | Website=www.dachbau-wendelstein.example.de");
    addCase("name and job in one cell",
            "Ilse Harbrecht, Inhaberin | Harbrecht Keramik GmbH | Töpferweg 2, 79098 Freiburg\n",
            "Vorname=Ilse | Nachname=Harbrecht | Kontakt=Ilse Harbrecht | "
            "Firma=Harbrecht Keramik GmbH | Adresse=Töpferweg 2 | PLZ=79098 | Ort=Freiburg | "
            "Land=Deutschland");
    addCase("closing, name, job",
            "Mit freundlichen Grüßen\n\nKatrin Vogelsang\nProjektleiterin\n\nVogelsang Elektro "
            "GmbH\nAmselweg 4\n88212 Ravensburg\nk.vogelsang@vogelsang-elektro.example.de\n",
            "Firma=Vogelsang Elektro GmbH | Vorname=Katrin | Nachname=Vogelsang | "
            "Kontakt=Katrin Vogelsang | Adresse=Amselweg 4 | PLZ=88212 | Ort=Ravensburg | "
            "Land=Deutschland | eMail=k.vogelsang@vogelsang-elektro.example.de");
    addCase("salutation, two degrees, particle",
            "Frau Prof. Dr. Helga von Bredow\nLehrstuhl für Baustatik\nTechnische Universität "
            "Nordheim\nBrückenstraße 3\n01099 Dresden\n",
            "Anrede=Frau | Titel=Prof. Dr. | Vorname=Helga | Nachname=von Bredow | "
            "Kontakt=Helga von Bredow | Abteilung=Lehrstuhl für Baustatik | "
            "Firma=Technische Universität Nordheim | Adresse=Brückenstraße 3 | PLZ=01099 | "
            "Ort=Dresden | Land=Deutschland");
    addCase("all capitals",
            "HERR DR. MARTIN KESSLER\nKESSLER DRUCK GMBH\nDRUCKERWEG 2\n34117 KASSEL\n",
            "Anrede=Herr | Titel=DR. | Vorname=MARTIN | Nachname=KESSLER | "
            "Kontakt=MARTIN KESSLER | Firma=KESSLER DRUCK GMBH | Adresse=DRUCKERWEG 2 | "
            "PLZ=34117 | Ort=KASSEL | Land=Deutschland");
    addCase("middle initial, English closing",
            "Kind regards,\nMichael J. Fenwick\nSales Director\nFenwick Tools Ltd\n22 Mill Road\n"
            "Cambridge CB1 2AB\nUnited Kingdom\n",
            "Vorname=Michael | Nachname=Fenwick | Kontakt=Michael Fenwick | "
            "Firma=Fenwick Tools Ltd | Adresse=22 Mill Road | PLZ=CB1 2AB | Ort=Cambridge | "
            "Land=Großbritannien");
    addCase("job word and degree in front",
            "Steuerberater Dipl.-Kfm. Otto Wendland\nWendland Steuerberatung\nKanzleiweg 5\n"
            "49074 Osnabrück\n",
            "Titel=Dipl.-Kfm. | Vorname=Otto | Nachname=Wendland | Kontakt=Otto Wendland | "
            "Firma=Wendland Steuerberatung | Adresse=Kanzleiweg 5 | PLZ=49074 | "
            "Ort=Osnabrück | Land=Deutschland");
    addCase("team greeting is nobody",
            "Viele Grüße\nIhr Serviceteam\n\nKlimatechnik Sonnleitner GmbH\nLüftungsweg 1\n"
            "93053 Regensburg\n",
            "Firma=Klimatechnik Sonnleitner GmbH | Adresse=Lüftungsweg 1 | PLZ=93053 | "
            "Ort=Regensburg | Land=Deutschland");
}

void TestEnhanced::companies_data()
{
    textAndExpected();
    addCase("Swiss degree with its school, a foundation as the firm",
            "lic. oec. HSG Martina Frick\nLeiterin Finanzen\n\nAlpenrhein Vorsorge Stiftung\n"
            "Aeulestrasse 30\nFL-9490 Vaduz\n",
            "Titel=lic. oec. HSG | Vorname=Martina | Nachname=Frick | Kontakt=Martina Frick | "
            "Firma=Alpenrhein Vorsorge Stiftung | Adresse=Aeulestrasse 30 | PLZ=9490 | Ort=Vaduz | "
            "Land=Liechtenstein");
    addCase("Bologna law degree behind the name, an establishment as the firm",
            "Noemi Gasser, MLaw\nGasser Treuhand Anstalt\nIm Krüz 4\nFL-9494 Schaan\n",
            "Vorname=Noemi | Nachname=Gasser | Kontakt=Noemi Gasser | "
            "Firma=Gasser Treuhand Anstalt | Adresse=Im Krüz 4 | PLZ=9494 | Ort=Schaan | "
            "Land=Liechtenstein");
    addCase("job in front of the firm",
            "Best regards\nRupert Dallmayr\nHead of Sales, Alpenkorn Mühlen AG\n"
            "rupert.dallmayr@alpenkorn.example.de\n",
            "Vorname=Rupert | Nachname=Dallmayr | Kontakt=Rupert Dallmayr | "
            "Firma=Alpenkorn Mühlen AG | eMail=rupert.dallmayr@alpenkorn.example.de");
    addCase("office named in one word",
            "Stadtverwaltung Nordhain\nOrdnungsamt\nRathausplatz 1\n35390 Gießen\n",
            "Firma=Stadtverwaltung Nordhain | Abteilung=Ordnungsamt | Adresse=Rathausplatz 1 | "
            "PLZ=35390 | Ort=Gießen | Land=Deutschland");
    addCase("slogan under the firm", "Tischlerei Hagedorn\nMeisterbetrieb\nMoorweg 7\n26789 Leer\n",
            "Firma=Tischlerei Hagedorn | Adresse=Moorweg 7 | PLZ=26789 | Ort=Leer | "
            "Land=Deutschland");
    addCase("greeting and slogan are no firm",
            "Beste Grüße aus Kiel\nIhr Partner für Qualität\nStiftung Lesewelt\nBuchweg 3\n"
            "24103 Kiel\n",
            "Firma=Stiftung Lesewelt | Adresse=Buchweg 3 | PLZ=24103 | Ort=Kiel | "
            "Land=Deutschland");
    addCase("partnership with ampersand", "Brandt & Oellers\nTurmstraße 8\n52062 Aachen\n",
            "Firma=Brandt & Oellers | Adresse=Turmstraße 8 | PLZ=52062 | Ort=Aachen | "
            "Land=Deutschland");
    addCase("firm name over two lines", "ZAUNKÖNIG\nMETALLBAU GMBH\nSchmiedeweg 3\n99423 Weimar\n",
            "Firma=ZAUNKÖNIG METALLBAU GMBH | Adresse=Schmiedeweg 3 | PLZ=99423 | Ort=Weimar | "
            "Land=Deutschland");
    addCase("job title is no address",
            "Jana Hollmann\nLeiterin Vertrieb\nHollmann Textil KG\nWebergasse 2\n48431 Rheine\n",
            "Vorname=Jana | Nachname=Hollmann | Kontakt=Jana Hollmann | "
            "Firma=Hollmann Textil KG | Adresse=Webergasse 2 | PLZ=48431 | Ort=Rheine | "
            "Land=Deutschland");
    addCase("firm without form above the address",
            "Nordlicht Kommunikation\nHafenkante 12\n18055 Rostock\n",
            "Firma=Nordlicht Kommunikation | Adresse=Hafenkante 12 | PLZ=18055 | Ort=Rostock | "
            "Land=Deutschland");
    addCase("foreign legal form",
            "Van Houten Bloemen B.V.\nBloemgracht 14\n1016 KJ Amsterdam\nNiederlande\n",
            "Firma=Van Houten Bloemen B.V. | Adresse=Bloemgracht 14 | PLZ=1016 KJ | "
            "Ort=Amsterdam | Land=Niederlande");
}

void TestEnhanced::streets_data()
{
    textAndExpected();
    addCase("PO box without number beside the street",
            "Vogt Revision AG\nBahnhofplatz 4\nPostfach\nCH-3001 Bern\n",
            "Firma=Vogt Revision AG | Adresse=Bahnhofplatz 4 | Adresse 2=Postfach | PLZ=3001 | "
            "Ort=Bern | Land=Schweiz");
    addCase("old and new address each on one line",
            "Praxis Lorenz\nAlte Anschrift: Kirchweg 2, 36037 Fulda\n"
            "Neue Anschrift: Domplatz 9, 36037 Fulda\n",
            "Firma=Praxis Lorenz | Adresse=Domplatz 9 | PLZ=36037 | Ort=Fulda | "
            "Land=Deutschland");
    addCase("a subject naming a street",
            "Rohrsanierung Gartenstraße 12\n\nKanalbau Riedel GmbH\nWerkstraße 3\n"
            "35390 Gießen\n",
            "Firma=Kanalbau Riedel GmbH | Adresse=Werkstraße 3 | PLZ=35390 | Ort=Gießen | "
            "Land=Deutschland");
    addCase("street without street word before its postcode",
            "Kellerei Morgenrot\nAm Mühlbach 7\n67098 Bad Dürkheim\n",
            "Firma=Kellerei Morgenrot | Adresse=Am Mühlbach 7 | PLZ=67098 | "
            "Ort=Bad Dürkheim | Land=Deutschland");
    addCase("number range and letter", "Druckhaus Seeblick\nLange Reihe 12-14a\n20099 Hamburg\n",
            "Firma=Druckhaus Seeblick | Adresse=Lange Reihe 12-14a | PLZ=20099 | Ort=Hamburg | "
            "Land=Deutschland");
    addCase("PO box only", "Landratsamt Wiesental\nPostfach 10 20 30\n79650 Schopfheim\n",
            "Firma=Landratsamt Wiesental | Adresse=Postfach 10 20 30 | PLZ=79650 | "
            "Ort=Schopfheim | Land=Deutschland");
    addCase("street and PO box, postcode of the street",
            "Kornkammer eG\nSpeicherstraße 2\n26122 Oldenburg\nPostfach 3344\n26023 Oldenburg\n",
            "Firma=Kornkammer eG | Adresse=Speicherstraße 2 | Adresse 2=Postfach 3344 | "
            "PLZ=26122 | Ort=Oldenburg | Land=Deutschland");
    addCase("c/o line beside the street",
            "Jugendchor Nordwind e.V.\nc/o Werkhof Nord\nHafenstraße 9\n24103 Kiel\n",
            "Firma=Jugendchor Nordwind e.V. | Adresse=Hafenstraße 9 | "
            "Adresse 2=c/o Werkhof Nord | PLZ=24103 | Ort=Kiel | Land=Deutschland");
    addCase("street and city on one line",
            "Glaserei Funke · Fensterweg 3, 45127 Essen · Tel. 0201 445566\n",
            "Firma=Glaserei Funke | Adresse=Fensterweg 3 | PLZ=45127 | Ort=Essen | "
            "Land=Deutschland | Telefon=0201 445566");
    addCase("French number with a comma before the street type",
            "Atelier Verrier SARL\n7, avenue des Tilleuls\n69003 Lyon\nFrance\n",
            "Firma=Atelier Verrier SARL | Adresse=7, avenue des Tilleuls | PLZ=69003 | Ort=Lyon | "
            "Land=Frankreich");
    addCase("US street type without its dot, suite on the same line",
            "Prairie Seed Partners LLC\n815 N. Willow Ave, Suite 200\nOmaha, NE 68102\n",
            "Firma=Prairie Seed Partners LLC | Adresse=815 N. Willow Ave, Suite 200 | "
            "PLZ=68102 | Ort=Omaha, NE | Land=USA");
    addCase("street without street word, PO box before the postcode",
            "Kessler Vermögensverwaltung Anstalt\nPradafant 11\nPostfach 207\nFL-9490 Vaduz\n",
            "Firma=Kessler Vermögensverwaltung Anstalt | Adresse=Pradafant 11 | "
            "Adresse 2=Postfach 207 | PLZ=9490 | Ort=Vaduz | Land=Liechtenstein");
    addCase("branch line between firm and street",
            "Nordlicht Logistik GmbH\nNiederlassung Bremen\nAm Speicher 4\n28217 Bremen\n",
            "Firma=Nordlicht Logistik GmbH | Adresse=Am Speicher 4 | "
            "Adresse 2=Niederlassung Bremen | PLZ=28217 | Ort=Bremen | Land=Deutschland");
    addCase("a lone branch word is no address extra",
            "Filiale\nBäckerei Sommer\nLindenweg 3\n34117 Kassel\n",
            "Firma=Bäckerei Sommer | Adresse=Lindenweg 3 | PLZ=34117 | Ort=Kassel | "
            "Land=Deutschland");
    addCase("moved notice: new address behind its label on one line",
            "Wir ziehen um!\n\nBuchbinderei Falkner\nNEU: Gerbergasse 5, 79098 Freiburg\n",
            "Firma=Buchbinderei Falkner | Adresse=Gerbergasse 5 | PLZ=79098 | Ort=Freiburg | "
            "Land=Deutschland");
    addCase("\"Neu:\" in front of news is no address",
            "Muster Beratung GmbH\nNeu: Beratung per Video\nHauptstraße 5\n12345 Berlin\n",
            "Firma=Muster Beratung GmbH | Adresse=Hauptstraße 5 | PLZ=12345 | Ort=Berlin | "
            "Land=Deutschland");
    addCase("moved notice: the label alone, the address below",
            "Schuhhaus Reiter\nNeu:\nMarktgasse 8\nCH-4051 Basel\n",
            "Firma=Schuhhaus Reiter | Adresse=Marktgasse 8 | PLZ=4051 | Ort=Basel | Land=Schweiz");
    addCase(
        "moved notice: trade name over the owner",
        "Hörakustik Sonnleitner\nInh. Birgit Sonnleitner\nNeu: Kirchplatz 2, 83278 Traunstein\n",
        "Firma=Hörakustik Sonnleitner | Vorname=Birgit | Nachname=Sonnleitner | "
        "Kontakt=Birgit Sonnleitner | Adresse=Kirchplatz 2 | PLZ=83278 | Ort=Traunstein | "
        "Land=Deutschland");
}

void TestEnhanced::postcodes_data()
{
    textAndExpected();
    addCase("Swiss prefix and a country line: one country",
            "Alpenblick Reisen AG\nBundesgasse 4\nCH-3011 Bern\nSchweiz\n",
            "Firma=Alpenblick Reisen AG | Adresse=Bundesgasse 4 | PLZ=3011 | Ort=Bern | "
            "Land=Schweiz");
    addCase("Liechtenstein", "Rheintal Treuhand Anstalt AG\nStädtle 10\nFL-9490 Vaduz\n",
            "Firma=Rheintal Treuhand Anstalt AG | Adresse=Städtle 10 | PLZ=9490 | Ort=Vaduz | "
            "Land=Liechtenstein");
    addCase("US city, state and ZIP",
            "Harborview Analytics, Inc.\n1200 Market Street\nSan Francisco, CA 94102\n",
            "Firma=Harborview Analytics, Inc. | Adresse=1200 Market Street | PLZ=94102 | "
            "Ort=San Francisco, CA | Land=USA");
    addCase("France with prefix", "Vins Dubois SARL\n12 rue des Vignes\nF-67000 Strasbourg\n",
            "Firma=Vins Dubois SARL | Adresse=12 rue des Vignes | PLZ=67000 | Ort=Strasbourg | "
            "Land=Frankreich");
    addCase("Italy with prefix", "Speck Oberhofer S.r.l.\nVia Roma 12\nI-39100 Bozen\n",
            "Firma=Speck Oberhofer S.r.l. | Adresse=Via Roma 12 | PLZ=39100 | Ort=Bozen | "
            "Land=Italien");
    addCase("four digits, Austrian number",
            "Donaublick Optik GmbH\nHauptplatz 1\n4020 Linz\nTel. +43 732 123456\n",
            "Firma=Donaublick Optik GmbH | Adresse=Hauptplatz 1 | PLZ=4020 | Ort=Linz | "
            "Land=Österreich | Telefon=+43 732 123456");
    addCase("four digits, Swiss domain",
            "Seeland Velos GmbH\nBahnhofstrasse 3\n2502 Biel\ninfo@seeland-velos.example.ch\n",
            "Firma=Seeland Velos GmbH | Adresse=Bahnhofstrasse 3 | PLZ=2502 | Ort=Biel | "
            "Land=Schweiz | eMail=info@seeland-velos.example.ch");
    addCase("German prefix", "Isartal Media GmbH\nSendlinger Straße 7\nD-80331 München\n",
            "Firma=Isartal Media GmbH | Adresse=Sendlinger Straße 7 | PLZ=80331 | Ort=München | "
            "Land=Deutschland");
}

void TestEnhanced::phones_data()
{
    textAndExpected();
    addCase("French label", "Tél. +33 1 42 68 53 00\n", "Telefon=+33 1 42 68 53 00");
    addCase("office and radio labels", "Büro: 0911 44 55 66\nFunk: 0171 998877\n",
            "Telefon=0911 44 55 66 | Mobil=0171 998877");
    addCase("scanned S for 5", "Tel. 0351 44 12 0S\n", "Telefon=0351 44 12 05");
    addCase("two labels on one line", "Tel. 0711 123 456 | Fax 0711 123 457\n",
            "Telefon=0711 123 456 | Fax=0711 123 457");
    addCase("two labels without divider", "Tel. 0711 123 456 Fax 0711 123 457\n",
            "Telefon=0711 123 456 | Fax=0711 123 457");
    addCase("written as it stands", "Telefon: +49 (0) 89 / 12 34 56-0\n",
            "Telefon=+49 (0) 89 / 12 34 56-0");
    addCase("mobile without label", "030 1234567\n0170 1234567\n",
            "Telefon=030 1234567 | Mobil=0170 1234567");
    addCase("Austrian mobile without label", "+43 664 1234567\n", "Mobil=+43 664 1234567");
    addCase("Salzburg's area code inside the Austrian mobile range",
            "Tel. +43 662 451280\nFax +43 662 451289\n",
            "Telefon=+43 662 451280 | Fax=+43 662 451289");
    addCase("Austrian mobile beside a landline",
            "T: +43 (0)512 58 33 10\nM: +43 (0)681 204 55 12\n",
            "Telefon=+43 (0)512 58 33 10 | Mobil=+43 (0)681 204 55 12");
    addCase("switchboard and direct line",
            "Tel. 0221 5555-0 (Zentrale)\nTel. 0221 5555-17 (Durchwahl)\n",
            "Telefon=0221 5555-17 | Telefon 2=0221 5555-0");
    addCase("hotline second", "Telefon: 0421 778899\nHotline: 0800 1234567\n",
            "Telefon=0421 778899 | Telefon 2=0800 1234567");
    addCase("symbols as labels", "☎ 0461 12345\n✉ hallo@foerde-kaffee.example.de\n",
            "Telefon=0461 12345 | eMail=hallo@foerde-kaffee.example.de");
}

void TestEnhanced::imprints_data()
{
    textAndExpected();
    addCase("generation after the managing director",
            "Impressum\nBrauerei Kellner GmbH\nHopfengasse 1\n91054 Erlangen\n"
            "Geschäftsführer: Georg Kellner sen., Lisa Kellner\n",
            "Firma=Brauerei Kellner GmbH | Vorname=Georg | Nachname=Kellner | "
            "Kontakt=Georg Kellner | Adresse=Hopfengasse 1 | PLZ=91054 | Ort=Erlangen | "
            "Land=Deutschland");
    addCase("chair with a note in brackets",
            "Impressum\nRheinblick Werft AG\nUferstraße 4\n56068 Koblenz\n"
            "Vorstand: Dr. Gisela Ahrend (Vorsitzende), Paul Lenz\n",
            "Firma=Rheinblick Werft AG | Titel=Dr. | Vorname=Gisela | Nachname=Ahrend | "
            "Kontakt=Gisela Ahrend | Adresse=Uferstraße 4 | PLZ=56068 | Ort=Koblenz | "
            "Land=Deutschland");
    addCase("numbered chair under the representation",
            "Impressum\nSchachclub Springer 1921 e.V.\nVertreten durch:\n"
            "1. Vorsitzender: Konrad Weilheimer\n2. Vorsitzende: Marta Pohl\nTurmstraße 9\n"
            "90403 Nürnberg\n",
            "Firma=Schachclub Springer 1921 e.V. | Vorname=Konrad | Nachname=Weilheimer | "
            "Kontakt=Konrad Weilheimer | Adresse=Turmstraße 9 | PLZ=90403 | Ort=Nürnberg | "
            "Land=Deutschland");
    addCase("firm under the responsibility label",
            "Verantwortlich:\nFeldberg Bergbahnen GmbH\nTalstation 1\n79868 Feldberg\n",
            "Firma=Feldberg Bergbahnen GmbH | Adresse=Talstation 1 | PLZ=79868 | "
            "Ort=Feldberg | Land=Deutschland");
    addCase("abbreviated owner",
            "Fahrradladen Speiche\nInh. Klaus Dittmer\nKettenweg 4\n18055 Rostock\n",
            "Firma=Fahrradladen Speiche | Vorname=Klaus | Nachname=Dittmer | "
            "Kontakt=Klaus Dittmer | Adresse=Kettenweg 4 | PLZ=18055 | Ort=Rostock | "
            "Land=Deutschland");
    addCase("represented by the managing director",
            "Impressum\n\nKlarwasser Filtertechnik GmbH\nSeestraße 4\n78464 Konstanz\n\n"
            "Vertreten durch den Geschäftsführer: Dipl.-Ing. Lothar Brenner\n"
            "Registergericht: Amtsgericht Freiburg HRB 1234\nUSt-IdNr.: DE123456789\n",
            "Firma=Klarwasser Filtertechnik GmbH | Adresse=Seestraße 4 | PLZ=78464 | "
            "Ort=Konstanz | Land=Deutschland | Titel=Dipl.-Ing. | Vorname=Lothar | "
            "Nachname=Brenner | Kontakt=Lothar Brenner");
    addCase("first of two directors, label on its own line",
            "Angaben gemäß § 5 DDG\nMorgentau Kosmetik GmbH\nRosenweg 2\n65183 Wiesbaden\n"
            "Geschäftsführer:\nIlse Morgenthal, Dr. Konrad Weyer\n",
            "Firma=Morgentau Kosmetik GmbH | Adresse=Rosenweg 2 | PLZ=65183 | Ort=Wiesbaden | "
            "Land=Deutschland | Vorname=Ilse | Nachname=Morgenthal | Kontakt=Ilse Morgenthal");
    addCase("register lines stay out",
            "Sägewerk Tannengrund KG\nHolzweg 1\n57392 Schmallenberg\nAmtsgericht Arnsberg HRA "
            "4711\nSitz: Schmallenberg\n",
            "Firma=Sägewerk Tannengrund KG | Adresse=Holzweg 1 | PLZ=57392 | "
            "Ort=Schmallenberg | Land=Deutschland");
}

void TestEnhanced::threads_data()
{
    textAndExpected();
    addCase("forwarded message, the address only in its header",
            "Bitte anlegen.\n\n---------- Forwarded message ---------\n"
            "Von: Ruth Albrecht <r.albrecht@albrecht-mosaik.example.de>\nBetreff: Anfrage\n\n"
            "Guten Tag,\nwir bitten um Rückruf.\n\nRuth Albrecht\nAlbrecht Mosaik GmbH\n"
            "Gerberstraße 8\n04105 Leipzig\n",
            "Vorname=Ruth | Nachname=Albrecht | Kontakt=Ruth Albrecht | "
            "Firma=Albrecht Mosaik GmbH | Adresse=Gerberstraße 8 | PLZ=04105 | Ort=Leipzig | "
            "Land=Deutschland | eMail=r.albrecht@albrecht-mosaik.example.de");
    addCase("quoted signature below a short reply",
            "Danke, so machen wir es.\n\nAm 03.03.2025 um 09:12 schrieb Uwe Krämer:\n"
            "> Hallo Herr Lenz,\n> anbei das Angebot.\n>\n> Uwe Krämer\n> Krämer Fliesen GmbH\n"
            "> Kachelweg 4\n> 33602 Bielefeld\n> Tel. 0521 998877\n",
            "Vorname=Uwe | Nachname=Krämer | Kontakt=Uwe Krämer | Firma=Krämer Fliesen GmbH | "
            "Adresse=Kachelweg 4 | PLZ=33602 | Ort=Bielefeld | Land=Deutschland | "
            "Telefon=0521 998877");
    addCase("topmost signature wins",
            "Gruß\nJonas Feld\nFeld Metallbau GmbH\nAmbossweg 2\n57462 Olpe\n\n"
            "-----Original Message-----\nFrom: Petra Lang <p.lang@lang.example.de>\n"
            "Petra Lang\nLang Logistik AG\nHafenweg 1\n28195 Bremen\n",
            "Vorname=Jonas | Nachname=Feld | Kontakt=Jonas Feld | Firma=Feld Metallbau GmbH | "
            "Adresse=Ambossweg 2 | PLZ=57462 | Ort=Olpe | Land=Deutschland");
    addCase("out of office names a deputy in prose",
            "Vielen Dank für Ihre Nachricht. Ich bin bis zum 14.08. nicht im Büro. In dringenden "
            "Fällen wenden Sie sich bitte an Frau Petra Lang, petra.lang@feld.example.de.\n\n"
            "Mit freundlichen Grüßen\nJonas Feld\nFeld Metallbau GmbH\nAmbossweg 2\n57462 Olpe\n"
            "j.feld@feld.example.de\n",
            "Vorname=Jonas | Nachname=Feld | Kontakt=Jonas Feld | Firma=Feld Metallbau GmbH | "
            "Adresse=Ambossweg 2 | PLZ=57462 | Ort=Olpe | Land=Deutschland | "
            "eMail=j.feld@feld.example.de");
    addCase("letter: the sender, not the recipient",
            "Wellenreiter Bootsbau GmbH\nKaiweg 3 · 23570 Lübeck\n\nHerrn\nKarl Obermaier\n"
            "Seestraße 10\n82319 Starnberg\n\nSehr geehrter Herr Obermaier,\n"
            "anbei unser Angebot.\n\nMit freundlichen Grüßen\n\nSönke Wellner\n",
            "Firma=Wellenreiter Bootsbau GmbH | Adresse=Kaiweg 3 | PLZ=23570 | Ort=Lübeck | "
            "Land=Deutschland | Vorname=Sönke | Nachname=Wellner | Kontakt=Sönke Wellner");
    addCase("a recipient address alone is the contact",
            "Herrn\nDr. Paul Ebert\nLindenweg 3\n34117 Kassel\n",
            "Anrede=Herr | Titel=Dr. | Vorname=Paul | Nachname=Ebert | Kontakt=Paul Ebert | "
            "Adresse=Lindenweg 3 | PLZ=34117 | Ort=Kassel | Land=Deutschland");
    addCase("moved: the new address",
            "Wir sind umgezogen!\nBisherige Anschrift:\nAlter Markt 1\n50667 Köln\n\n"
            "Neue Anschrift:\nTöpferei Lehmkuhl\nTonweg 5\n50823 Köln\n",
            "Firma=Töpferei Lehmkuhl | Adresse=Tonweg 5 | PLZ=50823 | Ort=Köln | "
            "Land=Deutschland");
}

void TestEnhanced::forms_data()
{
    textAndExpected();
    addCase("English form: the city on its own line above the postcode",
            "Name: Fiona Carver\nAddress: 3 Millbrook Lane\nCity: York\nPostcode: YO1 7HH\n",
            "Vorname=Fiona | Nachname=Carver | Kontakt=Fiona Carver | Adresse=3 Millbrook Lane | "
            "PLZ=YO1 7HH | Ort=York | Land=Großbritannien");
    addCase("label and value in cells", "Name:\tHolzapfel, Wiebke\nFirma:\tHolzapfel Gartenbau\n",
            "Vorname=Wiebke | Nachname=Holzapfel | Kontakt=Wiebke Holzapfel | "
            "Firma=Holzapfel Gartenbau");
    addCase("address extra and combined labels",
            "Straße und Hausnummer: Lindenring 5\nAdresszusatz: 2. Etage\n"
            "Zip / City: 24103 Kiel\nKontaktperson: Frauke Ohlsen\n",
            "Adresse=Lindenring 5 | Adresse 2=2. Etage | PLZ=24103 | Ort=Kiel | "
            "Land=Deutschland | Vorname=Frauke | Nachname=Ohlsen | Kontakt=Frauke Ohlsen");
    addCase("surname first after Name",
            "Firma: Holzwurm Schreinerei\nName: Brandl, Xaver\nOrt: Rosenheim\nPLZ: 83022\n",
            "Firma=Holzwurm Schreinerei | Vorname=Xaver | Nachname=Brandl | "
            "Kontakt=Xaver Brandl | PLZ=83022 | Ort=Rosenheim | Land=Deutschland");
    addCase("spreadsheet row",
            "Fuchs Gartenbau GmbH\tFrau\tMaren\tFuchs\tGartenweg 1\t21335\tLüneburg\r\n",
            "Firma=Fuchs Gartenbau GmbH | Anrede=Frau | Vorname=Maren | Nachname=Fuchs | "
            "Kontakt=Maren Fuchs | Adresse=Gartenweg 1 | PLZ=21335 | Ort=Lüneburg | "
            "Land=Deutschland");
}

void TestEnhanced::keepsTheClassicContract_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("signature") << QStringLiteral(
        "Muster GmbH\r\nHerr Hans Meier\r\nTel. 0711 12\r\n");
    QTest::newRow("tabs and quotes")
        << QStringLiteral("> A\tB\r\n> C . \r\nDetails der X schließen\r\n");
    QTest::newRow("semicolons") << QStringLiteral("Firma: A;Name: B;PLZ: 12345");
    QTest::newRow("control characters") << QStringLiteral("A\x01"
                                                          "B\r\n\x7f"
                                                          "C\r\n");
}

// The box shows exactly what the classic run shows, and the run completes.
void TestEnhanced::keepsTheClassicContract()
{
    QFETCH(QString, text);
    FreshSession classic;
    FreshSession enhanced;
    QVERIFY(FetchClipboardText(text, classic, Seams{}).has_value());
    const auto r = FetchClipboardTextEnhanced(text, enhanced, Seams{});
    QVERIFY(r.has_value());
    QVERIFY(r->completed);
    QCOMPARE(enhanced.clipText, classic.clipText);
    QCOMPARE(enhanced.state.ClipboardText, classic.state.ClipboardText);
}

void TestEnhanced::extraDefinitionsAsInClassic()
{
    const QString text = QStringLiteral("Abteilung: Technik\r\nAbteilung: QS\r\nKunde: 4711\r\n"
                                        "Fuchs GmbH\r\nGartenweg 1\r\n21335 Lüneburg\r\n");
    FreshSession classic;
    FreshSession enhanced;
    for (Session* s : {&classic, &enhanced}) {
        AddExtraDefinition(s->state, 88, QStringLiteral("Abteilung:"));
        AddExtraDefinition(s->state, 300, QStringLiteral("Kunde:"));
        s->state.ExtraDefinitionsLoaded = true;
    }
    FetchClipboardText(text, classic, Seams{});
    FetchClipboardTextEnhanced(text, enhanced, Seams{});
    QCOMPARE(enhanced.state.ExtraFieldValues, classic.state.ExtraFieldValues);
    QCOMPARE(enhanced.state.ExtraFieldValues.size(), 2);
    // The line the definition took is not analysed again; the second one still is.
    QCOMPARE(filed(enhanced),
             normalised(QStringLiteral("Abteilung=QS | Firma=Fuchs GmbH | Adresse=Gartenweg 1 | "
                                       "PLZ=21335 | Ort=Lüneburg | Land=Deutschland")));
}

void TestEnhanced::unplacedLineHasNoField()
{
    FreshSession s;
    FetchClipboardTextEnhanced(QStringLiteral("Fuchs GmbH\nGartenweg 1\n21335 Lüneburg\n"
                                              "Quergasse Nord\n"),
                               s, Seams{});
    int unplaced = -1;
    for (int r = 0; r < FieldRows::RowCount; ++r)
        if (s.rows.value(r) == QStringLiteral("Quergasse Nord"))
            unplaced = r;
    QVERIFY(unplaced >= 0);
    QCOMPARE(s.rows.selected(unplaced), -1);
}

void TestEnhanced::traceExplainsEveryLine()
{
    FreshSession s;
    const auto r = FetchClipboardTextEnhanced(
        QStringLiteral("Mit freundlichen Grüßen\nAnna Roth\nRoth GmbH\n"), s, Seams{}, false, true);
    QVERIFY(r.has_value());
    QCOMPARE(r->notes.size(), 3);
    const QJsonObject name = r->notes[1].toObject();
    QCOMPARE(name[QStringLiteral("kind")].toString(), QStringLiteral("Person"));
    QVERIFY(!name[QStringLiteral("why")].toString().isEmpty());
    QCOMPARE(name[QStringLiteral("fields")].toArray().first().toString(),
             QStringLiteral("Kontakt"));
    QCOMPARE(r->notes[0].toObject()[QStringLiteral("kind")].toString(),
             QStringLiteral("Grußformel"));
}

void TestEnhanced::modeSwitch()
{
    const QString text = QStringLiteral("Mit freundlichen Grüßen\r\nAnna Roth\r\nRoth GmbH\r\n");
    FreshSession a;
    FreshSession b;
    FetchClipboardText(text, a, Seams{});
    FetchClipboardTextIn(AnalysisMode::Classic, text, b, Seams{});
    QCOMPARE(filed(b), filed(a));
    FreshSession c;
    FetchClipboardTextIn(AnalysisMode::Enhanced, text, c, Seams{});
    QCOMPARE(filed(c), normalised(QStringLiteral(
                           "Firma=Roth GmbH | Vorname=Anna | Nachname=Roth | Kontakt=Anna Roth")));
    QVERIFY(filed(c) != filed(a));
}

void TestEnhanced::settingsSwitchItOn_data()
{
    QTest::addColumn<QByteArray>("ini");
    QTest::addColumn<bool>("enhanced");
    QTest::newRow("on") << QByteArray("[Config]\r\nErweiterteAnalyse=1\r\n") << true;
    QTest::newRow("off") << QByteArray("[Config]\r\nErweiterteAnalyse=0\r\n") << false;
    QTest::newRow("missing") << QByteArray("[Config]\r\nCacheFelder=0\r\n") << false;
    QTest::newRow("other value") << QByteArray("[Config]\r\nErweiterteAnalyse=ja\r\n") << false;
}

void TestEnhanced::settingsSwitchItOn()
{
    QFETCH(QByteArray, ini);
    QFETCH(bool, enhanced);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("zettelfischer.ini"));
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(ini);
    f.close();
    FreshSession s;
    s.state.ErweiterteAnalyse = !enhanced; // the load must overwrite it
    LoadSettings(path, s.state, s.rows);
    QCOMPARE(s.state.ErweiterteAnalyse, enhanced);
    QCOMPARE(ModeOf(s.state), enhanced ? AnalysisMode::Enhanced : AnalysisMode::Classic);
}

void TestEnhanced::oddInputEnds_data()
{
    QTest::addColumn<QString>("text");
    QString binary;
    for (int i = 0; i < 4000; ++i)
        binary.append(QChar(char16_t((i * 7919) % 0xd7ff + 1)));
    QTest::newRow("binary") << binary;
    QTest::newRow("one long line") << QString(200000, QLatin1Char('x'));
    QTest::newRow("many lines") << QStringLiteral("Musterweg 1\n12345 Stadt\n").repeated(20000);
    QTest::newRow("only dividers") << QStringLiteral("|||·•\t\t|\n").repeated(100);
    QTest::newRow("lone surrogates")
        << QString(QChar(0xd800)) + QStringLiteral("x\n") + QChar(0xdc00);
}

void TestEnhanced::oddInputEnds()
{
    QFETCH(QString, text);
    FreshSession s;
    const auto r = AnalyseTextEnhanced(text, s, Seams{});
    QVERIFY(r.completed);
    for (int row = 0; row < FieldRows::RowCount; ++row)
        QVERIFY(s.rows.selected(row) < s.rows.fields().count());
}

QTEST_GUILESS_MAIN(TestEnhanced)
#include "tst_enhanced.moc"
