// The enhanced analysis on people and firms: who of several named people is the contact,
// which degrees and designations stand around a name, which line is the firm, and what a
// block says about its country. Invented texts; one table per question.

#include "filedcontact.h"

#include <QTest>

using namespace zf;

using namespace zf::test;

class TestEnhancedPeople : public QObject {
    Q_OBJECT

private slots:
    void representatives_data();
    void representatives() { check(); }
    void degrees_data();
    void degrees() { check(); }
    void firms_data();
    void firms() { check(); }
    void departments_data();
    void departments() { check(); }
    void countries_data();
    void countries() { check(); }
    void letters_data();
    void letters() { check(); }
    void nameEnds_data();
    void nameEnds() { check(); }
    void scannedNames_data();
    void scannedNames() { check(); }
    void headings_data();
    void headings() { check(); }
    void signerDetails_data();
    void signerDetails() { check(); }

private:
    // Expected: "Field=value | …" for the fields that matter; a field written "Field=" must
    // stay empty.
    void check()
    {
        QFETCH(QString, text);
        QFETCH(QString, expected);
        QCOMPARE(analyseNamed(text, expected), normalised(expected));
    }
};

void TestEnhancedPeople::representatives_data()
{
    textAndExpected();
    addCase("managing directors under their label, designations behind",
            "Impressum\n\nHallwanger & Tesch Wirtschaftsprüfung GmbH\nKornmarkt 4\n"
            "99084 Erfurt\n\nGeschäftsführer:\nDipl.-Kfm. Anselm Hallwanger, WP, StB\n"
            "Dr. Ricarda Tesch, StB\n",
            "Titel=Dipl.-Kfm. | Vorname=Anselm | Nachname=Hallwanger | "
            "Kontakt=Anselm Hallwanger");
    addCase("people with functions, the first one counts",
            "Vertretungsberechtigte Personen:\nLeonie Marbach, COO\nDr. Henning Quast, CEO\n"
            "Quast Logistik AG\nSpeicherweg 2\n28197 Bremen\n",
            "Titel= | Vorname=Leonie | Nachname=Marbach | Kontakt=Leonie Marbach");
    addCase("board with its president named later",
            "Alpsee Holding AG\nSeestrasse 40\n8810 Horgen\nSchweiz\n\n"
            "Geschäftsführer: Armin Gubler\n"
            "Verwaltungsrat: Jolanda Ritz, Dr. Peter Hänggi (Präsident)\n",
            "Vorname=Peter | Nachname=Hänggi | Titel=Dr. | Kontakt=Peter Hänggi");
    addCase("president first in the board line",
            "Oberland Gewürze AG\nHaldenweg 9\n3600 Thun\n\n"
            "Verwaltungsrat: lic. oec. Beatrice Zaugg (Präsidentin), Ruedi Amstutz\n"
            "Geschäftsleitung: Fabian Roth\n",
            "Titel=lic. oec. | Vorname=Beatrice | Nachname=Zaugg | Kontakt=Beatrice Zaugg");
    addCase("a deputy chair is not the chair",
            "Verein Stadtgarten e.V.\nParkweg 1\n79098 Freiburg\n\n"
            "1. Vorsitzende: Hanna Ebinger\nstellv. Vorsitzender: Jochen Maurer\n",
            "Vorname=Hanna | Nachname=Ebinger");
    addCase("sole trader behind the owner's name",
            "Impressum\nKaffeerösterei Bohnenglück\nInhaber: Tobias Wendeling e.K.\n"
            "Röstereigasse 3\n93047 Regensburg\n",
            "Firma=Kaffeerösterei Bohnenglück | Vorname=Tobias | Nachname=Wendeling | "
            "Kontakt=Tobias Wendeling");
    addCase("owner line under a firm without legal form",
            "Gruß\nSilke\n\nWendt Polsterwerkstatt\nInh. Silke Wendt\nKanalstraße 12\n"
            "23552 Lübeck\n",
            "Firma=Wendt Polsterwerkstatt | Vorname=Silke | Nachname=Wendt");
    addCase("a firm under an owner's inline label is no second owner",
            "Inhaber: Bodo Klaasen\nKlaasen Elektro\nDeichweg 5\n26721 Emden\n",
            "Vorname=Bodo | Nachname=Klaasen | Kontakt=Bodo Klaasen");
    addCase("Dutch management under a colophon heading",
            "Colofon\nDrukkerij Van Dam B.V.\nMolenstraat 3\n2011 AB Haarlem\nNederland\n"
            "Directie: Ruud van Dam\nKvK 12345678\n",
            "Firma=Drukkerij Van Dam B.V. | Vorname=Ruud | Nachname=van Dam");
    addCase("Spanish administrator",
            "Aviso legal\nTalleres Ruiz S.L.\nCalle Mayor 5\n28013 Madrid\nEspaña\n"
            "Administrador: Javier Ruiz Ortega\n",
            "Firma=Talleres Ruiz S.L. | Vorname=Javier | Nachname=Ruiz Ortega");
    addCase("French manager label",
            "Mentions légales\nBoulangerie Lefèvre SARL\n8, rue des Tanneurs\n67000 Strasbourg\n"
            "France\nGérante : Sophie Lefèvre-Klein\n",
            "Firma=Boulangerie Lefèvre SARL | Vorname=Sophie | Nachname=Lefèvre-Klein");
    addCase("Luxembourg firm written with spaces in its legal form",
            "Moselblick Services S.à r.l.\n4, route du Vin\nL-5440 Remerschen\n"
            "Gérant : Jean Hoffmann\n",
            "Firma=Moselblick Services S.à r.l. | Vorname=Jean | Nachname=Hoffmann");
    addCase("official letter: information given by",
            "Landkreis Wolfsgrund\nAmt für Wasserwirtschaft\nAm Wehr 2\n38300 Wolfenbüttel\n\n"
            "Auskunft erteilt: Herr Dipl.-Ing. (FH) Lars Mertesacker\nTelefon 05331 84-212\n",
            "Anrede=Herr | Titel=Dipl.-Ing. (FH) | Vorname=Lars | Nachname=Mertesacker");
    addCase("combined name label of a form",
            "Vorname / Name: Reto Amsler\nFirma: Amsler Holzbau AG\nPLZ / Ort: 5000 Aarau\n",
            "Vorname=Reto | Nachname=Amsler | Kontakt=Reto Amsler");
}

void TestEnhancedPeople::degrees_data()
{
    textAndExpected();
    addCase("Dutch engineer",
            "Met vriendelijke groet,\n\nIr. Maarten de Graaf\nProjectleider\n"
            "Graaf Waterbouw B.V.\nHavenweg 12\n3011 AB Rotterdam\n",
            "Titel=Ir. | Vorname=Maarten | Nachname=de Graaf | Kontakt=Maarten de Graaf");
    addCase("Dutch graduate with three-word surname",
            "Drs. Anouk van den Berg\nBerg Advies B.V.\nKeizersgracht 100\n1015 AA Amsterdam\n",
            "Titel=Drs. | Vorname=Anouk | Nachname=van den Berg");
    addCase("Dutch lawyer's degree written small, unlike the English salutation",
            "mr. drs. Sanne Visser\nVisser Advocaten\nHerengracht 20\n1015 BK Amsterdam\n",
            "Anrede= | Titel=mr. drs. | Vorname=Sanne | Nachname=Visser");
    addCase("English salutation",
            "Mr. Oliver Grant\nGrant Joinery Ltd\n4 Mill Lane\nYork YO1 7HH\n",
            "Anrede=Herr | Titel= | Vorname=Oliver | Nachname=Grant");
    addCase("Italian doctor, female form",
            "Distinti saluti\n\nDott.ssa Francesca Moretti\nMoretti Consulenze S.r.l.\n"
            "Via Roma 12\n40121 Bologna\nItalia\n",
            "Titel=Dott.ssa | Vorname=Francesca | Nachname=Moretti");
    addCase("Italian lawyer on a card",
            "STUDIO LEGALE ROSSI\nAvv. Marco Rossi\nCorso Vittorio Emanuele 8\n10121 Torino\n"
            "Italia\n",
            "Titel=Avv. | Vorname=Marco | Nachname=Rossi | Kontakt=Marco Rossi");
    addCase("honorary doctorate spelt apart",
            "Prof. Dr. h. c. Gertrud Vollmer\nVollmer Stiftung\nLindenallee 2\n53113 Bonn\n",
            "Titel=Prof. Dr. h. c. | Vorname=Gertrud | Nachname=Vollmer");
    addCase("professional designations behind the name are no surname",
            "Mit freundlichen Grüßen\nKonstanze Abeling, RA, StB\nAbeling Recht GmbH\n"
            "Rechtsweg 1\n30159 Hannover\n",
            "Vorname=Konstanze | Nachname=Abeling | Kontakt=Konstanze Abeling");
    addCase("American designation behind the name",
            "Best regards,\nSamantha Ortiz, CPA\nOrtiz Accounting LLC\n",
            "Vorname=Samantha | Nachname=Ortiz");
    addCase("Polish master engineer, written small",
            "Z poważaniem\nmgr inż. Tomasz Nowicki\nNowicki Budownictwo Sp. z o.o.\n",
            "Titel=mgr inż. | Vorname=Tomasz | Nachname=Nowicki | "
            "Firma=Nowicki Budownictwo Sp. z o.o.");
    addCase("Swiss abbreviated salutation",
            "Fr. Dr. Corinne Wyss\nWyss Kommunikation GmbH\nMarktgasse 8\n3011 Bern\n",
            "Anrede=Frau | Titel=Dr. | Vorname=Corinne | Nachname=Wyss");
    addCase("OCR digit in a known given name",
            "Ho1ger Brinkmann\nHafenmeister\nHafen Brinkmann GmbH\nKaiweg 5\n27568 Bremerhaven\n",
            "Vorname=Holger | Nachname=Brinkmann");
    addCase("OCR zero read as O at the start",
            "0laf Tiedemann\nTiedemann Bau GmbH\nBaustraße 1\n24103 Kiel\n",
            "Vorname=Olaf | Nachname=Tiedemann");
}

void TestEnhancedPeople::firms_data()
{
    textAndExpected();
    addCase("all-caps letterhead firm ending in CO.",
            "KESTREL VALLEY SEED CO.\n214 Mill Road\nAmherst, MA 01002\n",
            "Firma=KESTREL VALLEY SEED CO.");
    addCase("a trade word and the owner's surname, without a legal form",
            "Viele Grüße\nMarek Ostrowski\n\nSanitär Ostrowski\n"
            "Ihr Fachbetrieb für Bad und Heizung\nInh. Marek Ostrowski\n"
            "Hafenweg 3 · 18055 Rostock\n",
            "Firma=Sanitär Ostrowski | Vorname=Marek | Nachname=Ostrowski");
    addCase("a county after a comma is no firm", "Aoife Brennan\nMain Street, Co. Kerry\n",
            "Firma=");
    addCase("register line with the court abbreviated is no firm",
            "Viele Grüße\nJana Reuter\n\nkontur design GmbH\nLindenstraße 8 | 10969 Berlin\n"
            "Geschäftsführung: Jana Reuter | HRB 12345 B, AG Charlottenburg\n",
            "Firma=kontur design GmbH | Vorname=Jana | Nachname=Reuter");
    addCase("rating stars and a slogan",
            "Herzliche Grüße\nIhr Team vom\nBerghotel Edelweiß ★★★★S\n"
            "Ihre Auszeit in den Bergen\nAlmweg 3 · 87561 Oberstdorf\n",
            "Firma=Berghotel Edelweiß S");
    addCase("stars mark the name even without a trade word",
            "Zur Alten Mühle ★★★\nIhr Genuss am Fluss\nMühlenweg 2\n97080 Würzburg\n",
            "Firma=Zur Alten Mühle");
    addCase("a slogan over the address is no firm",
            "Viele Grüße\nKai Brunnert\n\nBRUNNERT\nIhre Wohlfühloase im Bad\n"
            "Rohrweg 4\n59065 Hamm\n",
            "Firma=BRUNNERT | Vorname=Kai");
    addCase("trade word over the partners' names in capitals",
            "INGENIEURBÜRO\nHAGEN + STRAUCH\n\nDipl.-Ing. Till Strauch\nBrunnenweg 7\n"
            "34117 Kassel\n",
            "Firma=INGENIEURBÜRO HAGEN + STRAUCH | Vorname=Till | Nachname=Strauch");
    addCase("club with its legal form spelt apart",
            "Impressum\nSV Blau-Weiß Hohenfelde 1921 e. V.\nSportplatzweg 3\n22087 Hamburg\n"
            "Vorstand: Ingo Petersen\n",
            "Firma=SV Blau-Weiß Hohenfelde 1921 e. V. | Vorname=Ingo | Nachname=Petersen");
    addCase("practice named after its owner",
            "Ergotherapie Miriam Sauerland\nGartenstraße 14\n48143 Münster\n"
            "Tel. 0251 / 44 55 66\n",
            "Firma=Ergotherapie Miriam Sauerland | Vorname=Miriam | Nachname=Sauerland | "
            "Kontakt=Miriam Sauerland");
    addCase("practice named after its doctor",
            "Praxis Dr. med. dent. Jonas Keller\nZahnarzt\nKirchgasse 4\n79098 Freiburg\n",
            "Firma=Praxis Dr. med. dent. Jonas Keller | Titel=Dr. med. dent. | Vorname=Jonas | "
            "Nachname=Keller");
    addCase("a trade with a place name names nobody",
            "Bäckerei Am Markt\nMarktplatz 2\n37073 Göttingen\n",
            "Firma=Bäckerei Am Markt | Vorname= | Nachname=");
    addCase("card: trade, name, functions",
            "Fotografie am Deich\nJannik Ohlsen\nFotograf · Bildbearbeitung\nDeichstraße 40\n"
            "25813 Husum\n",
            "Firma=Fotografie am Deich | Vorname=Jannik | Nachname=Ohlsen");
}

void TestEnhancedPeople::departments_data()
{
    textAndExpected();
    addCase("the generic word goes",
            "Kreiswerke Hollstedt GmbH\nAbteilung Netzanschluss\nWerkstraße 2\n29633 Munster\n",
            "Abteilung=Netzanschluss | Firma=Kreiswerke Hollstedt GmbH");
    addCase("a unit with a preposition keeps it",
            "Abteilung für Unfallchirurgie\nKlinikum Nordheide\nKlinikweg 1\n21244 Buchholz\n",
            "Abteilung=Abteilung für Unfallchirurgie");
    addCase("English unit named last",
            "Kind regards\nHelen Marsh\nCustomer Service Department\nMarsh Tools Ltd\n"
            "3 Station Road\nLeeds LS1 4DY\n",
            "Abteilung=Customer Service Department | Vorname=Helen | Firma=Marsh Tools Ltd");
    addCase("Italian office is a unit, not a person",
            "Cordiali saluti\n\nLuca Ferri\nUfficio Acquisti\nFerri Meccanica S.p.A.\n"
            "Via Emilia 200\n41121 Modena\n",
            "Abteilung=Ufficio Acquisti | Vorname=Luca | Nachname=Ferri");
}

void TestEnhancedPeople::countries_data()
{
    textAndExpected();
    addCase("Swiss town without country line",
            "Freundliche Grüsse\nMarco Egli\nEgli Gartenbau GmbH\nRiedstrasse 4\n"
            "8400 Winterthur\n",
            "PLZ=8400 | Land=Schweiz");
    addCase("canton code behind the town",
            "Beat Imboden\nImboden Sanitär AG\nDorfstrasse 1\n3920 Zermatt VS\n", "Land=Schweiz");
    addCase("Swiss greeting",
            "Grüezi Herr Baumann\n\nBesten Dank für Ihre Anfrage.\n\nFreundlich\nRahel Vogt\n"
            "Vogt Treuhand GmbH\nHauptgasse 3\n4500 Kleinstadt\n",
            "Land=Schweiz");
    addCase("Liechtenstein municipality", "Kaufmann Bau Anstalt\nIndustriestrasse 5\n9494 Schaan\n",
            "Land=Liechtenstein");
    addCase("Austrian town stays Austria",
            "Liebe Grüße\nKatharina Moser\nMoser Reisen GmbH\nHerrengasse 4\n8010 Graz\n",
            "Land=Österreich");
    addCase("Italian city with a five-digit postcode and nothing else",
            "Bianchi Tessuti S.r.l.\nVia Po 8\n10124 Torino\n", "Land=Italien");
    addCase("German town keeps the default",
            "Kurz Metallbau GmbH\nRingstraße 8\n72764 Reutlingen\n", "Land=Deutschland");
    addCase("a Swiss mobile label",
            "Urs Haldimann\nHaldimann Velos\nBahnhofweg 3\n3550 Langnau\nNatel 079 123 45 67\n",
            "Land=Schweiz");
}

void TestEnhancedPeople::letters_data()
{
    textAndExpected();
    addCase("a recipient authority after \"An die\" is not the sender's firm",
            "Dipl.-Ing. Petra Haslinger\nBeratende Ingenieurin\nLerchenweg 4\n4020 Linz\n\n"
            "An die\nMarktgemeinde Steinbach\nBauamt\nHauptplatz 1\n4594 Steinbach\n\n"
            "Betreff: Statik\n",
            "Firma= | Abteilung= | Vorname=Petra | Adresse=Lerchenweg 4");
    addCase("two people sign together: the first named is the contact",
            "Wir freuen uns auf Sie!\n\nMila Hartung und Jonas Brandt\nAtelier Hartung & Brandt\n"
            "Ufergasse 2\n04109 Leipzig\n",
            "Vorname=Mila | Nachname=Hartung");
    addCase("French letter: the addressee with her own address is not the sender",
            "CABINET DURAND\n3, place Bellecour\n69002 Lyon\nFrance\n\n"
            "Madame Odile Marchand\n12, rue Victor Hugo\n69003 Lyon\n\nObjet : Devis\n\n"
            "Madame,\n\nVeuillez trouver ci-joint notre devis.\n\nThierry Durand\nAvocat\n",
            "Anrede= | Vorname=Thierry | Nachname=Durand | Adresse=3, place Bellecour");
    addCase("a signature with a salutation and no other address stays the contact",
            "Herr Dr. Volker Assmann\nAssmann Consulting\nBergstraße 9\n69120 Heidelberg\n",
            "Anrede=Herr | Vorname=Volker | Nachname=Assmann");
    addCase("reply: the signer's mail from the quoted header",
            "Danke, passt.\n\nGruss\nLukas Brand\nBrand Elektro AG\nBahnhofstrasse 2, 6300 Zug\n\n"
            "-----Ursprüngliche Nachricht-----\n"
            "Von: Sara Koch <s.koch@koch-druck.example.ch>\n"
            "Gesendet: Montag, 2. März 2026 10:00\n"
            "An: Lukas Brand <l.brand@brand-elektro.example.ch>\nBetreff: Offerte\n",
            "eMail=l.brand@brand-elektro.example.ch | Vorname=Lukas | Land=Schweiz");
}

void TestEnhancedPeople::nameEnds_data()
{
    textAndExpected();
    addCase("chartered architect's letters behind the name",
            "Best wishes,\n\nGareth Pennington FRIBA\nPartner\n\nPennington Hale Ltd\n"
            "14 Dock Street\nBristol BS1 4RT\n",
            "Vorname=Gareth | Nachname=Pennington | Kontakt=Gareth Pennington | Titel=");
    addCase("surveyor and honour after a comma",
            "Regards\n\nMargaret Olusanya, MRICS, OBE\nOlusanya Surveyors Ltd\n"
            "2 Kings Road\nLeeds LS1 2AB\n",
            "Vorname=Margaret | Nachname=Olusanya | Kontakt=Margaret Olusanya");
    addCase("engineer's letters in an all-caps signature",
            "KIND REGARDS\n\nDAVID OKAFOR CENG MICE\nOKAFOR STRUCTURES LTD\n"
            "9 MILL LANE\nCARDIFF CF10 1AA\n",
            "Vorname=DAVID | Nachname=OKAFOR");
    addCase("chair behind a comma in an imprint",
            "Impressum\nBergbahnen Hohgant AG\nTalweg 3\n3555 Trubschachen\n\n"
            "Vertretungsberechtigte Personen\nReto Gerber, Verwaltungsratspräsident\n"
            "Sandra Lüthi, Geschäftsführerin\n",
            "Vorname=Reto | Nachname=Gerber | Kontakt=Reto Gerber");
    addCase("association's chairwoman behind a comma",
            "Impressum\nTurnverein Oberwil\nSchulstrasse 2\n4104 Oberwil\n\n"
            "Vorstand\nMonika Brunner, Präsidentin\n",
            "Vorname=Monika | Nachname=Brunner");
    addCase("chairman's office in brackets behind the name",
            "Impressum\nMusikverein Bergheim\nDorfplatz 1\n5101 Bergheim\n\nVertreten durch\n"
            "Markus Aigner (Obmann)\nPetra Gruber (Kassierin)\n",
            "Vorname=Markus | Nachname=Aigner | Kontakt=Markus Aigner");
    addCase("function behind a dash",
            "Viele Grüße\nTanja Wolf – Geschäftsführerin\nWolf Event GmbH\nRingstr. 1\n"
            "50667 Köln\n",
            "Vorname=Tanja | Nachname=Wolf");
    addCase("the signer before the team",
            "Herzliche Grüße\nKarin Obermaier und das Team der Bäckerei Obermaier\n"
            "Bäckerei Obermaier OHG\nMarktplatz 3\n84028 Landshut\n",
            "Vorname=Karin | Nachname=Obermaier | Kontakt=Karin Obermaier");
    addCase("the signer before an English team",
            "Cheers,\nLiam Doherty & the team at Doherty Print\nDoherty Print Ltd\n"
            "5 Harbour Road\nGalway H91 X2Y3\nIreland\n",
            "Vorname=Liam | Nachname=Doherty");
    addCase("a double family name without a greeting, given name from abroad",
            "Oksana Petrenko-Lang\nProjektleitung\n\nFeldweg Media GmbH\nFeldweg 4\n"
            "90402 Nürnberg\noksana.petrenko-lang@feldweg-media.de\n",
            "Vorname=Oksana | Nachname=Petrenko-Lang | Kontakt=Oksana Petrenko-Lang");
    addCase("an unknown given name, the double family name in the mail",
            "Zuzana Horváth-Kessler\nArt Direction\n\nBlaupause Studio GmbH\nHafenweg 2\n"
            "48155 Münster\nzuzana.horvath-kessler@blaupause.example.de\n",
            "Vorname=Zuzana | Nachname=Horváth-Kessler");
    addCase("a Turkish given name with its own letters",
            "Gökhan Yıldırım\nVertrieb\n\nRheinlicht GmbH\nHafenstraße 9\n"
            "68159 Mannheim\ng.yildirim@rheinlicht.de\n",
            "Vorname=Gökhan | Nachname=Yıldırım");
}

void TestEnhancedPeople::scannedNames_data()
{
    textAndExpected();
    addCase("capital I for a small l inside the surname",
            "Mit freundlichen Grüßen\nHerr Sven KIeinschmidt\nKIeinschmidt Metallbau GmbH\n"
            "Hüttenweg 2\n57072 Siegen\n",
            "Anrede=Herr | Vorname=Sven | Nachname=Kleinschmidt");
    addCase("capital I in the middle of a surname under a label",
            "Ansprechpartner: Frau Anja MüIler, Einkauf\nTextilhaus Sonne KG\nBahnhofstr. 1\n"
            "95028 Hof\n",
            "Vorname=Anja | Nachname=Müller");
    addCase("a Scottish capital stays",
            "Kind regards\nFiona McIntyre\nMcIntyre Joinery Ltd\n12 Glen Road\n"
            "Inverness IV2 3AB\n",
            "Vorname=Fiona | Nachname=McIntyre");
    addCase("digits for letters inside a scanned surname",
            "Dr. Anke Hi1debrandt\nHi1debrandt Dental GmbH\nDomplatz 1\n48143 Münster\n",
            "Titel=Dr. | Vorname=Anke | Nachname=Hildebrandt");
    addCase("digits for letters in a scanned given name",
            "Mit freundlichen Grüßen\nMa1te Sch0lz\nScholz Druck GmbH\nRing 3\n24103 Kiel\n",
            "Vorname=Malte | Nachname=Scholz");
    addCase("degree read with a small l",
            "Elbtal Planung GmbH\n\nDipl.-lng. Holger Sturm\nKesselsdorfer Str. 8\n"
            "01159 Dresden\n",
            "Titel=Dipl.-Ing. | Vorname=Holger | Nachname=Sturm");
    addCase("degree read with a one for an l",
            "Mit freundlichen Grüßen\nDip1.-Ing. Jens Ott\nOtt Statik GmbH\nHof 2\n"
            "36037 Fulda\n",
            "Titel=Dipl.-Ing. | Vorname=Jens | Nachname=Ott");
    addCase("degree on a line of its own read with a small l",
            "Mit freundlichen Grüßen\nlng.\nMartin Aigner\nAigner Haustechnik GmbH\n"
            "Lastenstraße 4\n4020 Linz\n",
            "Titel=Ing. | Vorname=Martin | Nachname=Aigner");
}

void TestEnhancedPeople::headings_data()
{
    textAndExpected();
    addCase("a fax heading is no firm, the sender line is",
            "TELEFAXNACHRICHT\n\nAn: Fa. Berger Holz, z. Hd. Frau Lutz\n"
            "Von: Sägewerk Kollmann GmbH\nWaldstr. 12\n94249 Bodenmais\n"
            "Ansprechpartner: Herr Florian Kollmann\n",
            "Firma=Sägewerk Kollmann GmbH | Vorname=Florian | Nachname=Kollmann");
    addCase("an offer heading over the letterhead",
            "Angebot\nMalerbetrieb Stuckmann GmbH\nRingstraße 5\n32052 Herford\n",
            "Firma=Malerbetrieb Stuckmann GmbH");
    addCase("a contact-address heading over the firm",
            "Kontaktadresse\nSkilift Hoch-Ybrig AG\nWeglosen 1\n8842 Unteriberg\n",
            "Firma=Skilift Hoch-Ybrig AG");
    addCase("a mail header's sender with a name stays no firm",
            "Von: Petra Wolf\nGesendet: Montag, 2. März 2026 10:12\n\nHallo,\nanbei.\n\n"
            "Gruß\nPetra Wolf\nWolf Gartenbau GmbH\nAuweg 2\n86152 Augsburg\n",
            "Firma=Wolf Gartenbau GmbH | Vorname=Petra | Nachname=Wolf");
    addCase("Austrian firm written small with its chamber form",
            "lg\nMag. Eva Pichler\n\npichler wimmer ziviltechniker zt gmbh\nLandstraße 9\n"
            "4020 Linz\n",
            "Firma=pichler wimmer ziviltechniker zt gmbh");
    addCase("a sentence written small is no firm",
            "bitte holen sie die ware ab\nSchreinerei Holm\nDorfstr. 2\n24837 Schleswig\n",
            "Firma=Schreinerei Holm");
    addCase("logo line with the form only, full name in the footer",
            "BRANDT & KOLLEGEN\nSteuerberater PartG mbB\n\nSehr geehrte Damen und Herren,\n"
            "anbei die Unterlagen.\n\nMit freundlichen Grüßen\nUlrike Brandt\n\n"
            "Brandt & Kollegen Steuerberater PartG mbB · Ostwall 8 · 47798 Krefeld\n",
            "Firma=Brandt & Kollegen Steuerberater PartG mbB");
}

void TestEnhancedPeople::signerDetails_data()
{
    textAndExpected();
    addCase("the signer's own mail over the association's office",
            "FEDERATION OF ORGAN BUILDERS AISBL\nAvenue Louise 12\n1050 Bruxelles\nBelgium\n"
            "office@fob-organs.eu\n\nYours sincerely,\n\nDr. Pieter Van den Broeck\n"
            "Secretary General\npieter.vandenbroeck@fob-organs.eu\n",
            "eMail=pieter.vandenbroeck@fob-organs.eu");
    addCase("an umlaut surname written out in the mail",
            "Mit freundlichen Grüßen\nJörg Böhmer\nBöhmer Fenster GmbH\nAm Ring 4\n"
            "49074 Osnabrück\ninfo@boehmer-fenster.de\njoerg.boehmer@boehmer-fenster.de\n",
            "eMail=joerg.boehmer@boehmer-fenster.de");
    addCase("no personal mail: the office's stays",
            "Mit freundlichen Grüßen\nAnja Reuter\nReuter Optik\nLange Str. 3\n"
            "26122 Oldenburg\ninfo@reuter-optik.de\nservice@reuter-optik.de\n",
            "eMail=info@reuter-optik.de");
    addCase("the unit behind its head's title",
            "Prof. Dr. Kerstin Albers\nLeiterin Institut für Angewandte Optik\n\n"
            "Hochschule Nordheide\nCampusallee 1\n21335 Lüneburg\n",
            "Abteilung=Institut für Angewandte Optik | Firma=Hochschule Nordheide");
    addCase("English head of a department",
            "Dr Sarah Whitfield\nHead of School of Chemistry\nUniversity of Northmoor\n"
            "Science Park\nYork YO10 5DD\n",
            "Abteilung=School of Chemistry");
    addCase("a head of sales is a function, no unit",
            "Tobias Renner\nLeiter Vertrieb\nRenner Antriebe GmbH\nWerkstr. 4\n"
            "73430 Aalen\n",
            "Abteilung= | Firma=Renner Antriebe GmbH");
    addCase("the clerk's salutation from the reference line",
            "Landratsamt Oberhavel\nBauaufsicht\n\nIhr Zeichen     Bearbeiter     Datum\n"
            "B-12/26          Herr Kowalski   03.02.2026\n\nSehr geehrte Frau Lenz,\n"
            "der Antrag ist eingegangen.\n\nMit freundlichen Grüßen\nim Auftrag\n\n"
            "Marek Kowalski\nAdolf-Dechert-Straße 1\n16515 Oranienburg\n"
            "m.kowalski@oberhavel.example.de\n",
            "Anrede=Herr | Vorname=Marek | Nachname=Kowalski");
    addCase("the recipient's salutation is not the signer's",
            "Sehr geehrter Herr Beck,\nvielen Dank.\n\nMit freundlichen Grüßen\n"
            "Julia Beck\nBeck Reisen GmbH\nMarkt 1\n99423 Weimar\n",
            "Anrede= | Vorname=Julia | Nachname=Beck");
}

QTEST_GUILESS_MAIN(TestEnhancedPeople)
#include "tst_enhanced_people.moc"
