<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>DetailsPane</name>
    <message>
        <source>Phone: %1</source>
        <translation>Telefon: %1</translation>
    </message>
    <message>
        <source>Fax: %1</source>
        <translation>Fax: %1</translation>
    </message>
    <message>
        <source>Details of the chosen item</source>
        <translation>Angaben zum gewählten Objekt</translation>
    </message>
    <message>
        <source>Picture of the item</source>
        <translation>Bild des Objekts</translation>
    </message>
    <message>
        <source>Catalog:</source>
        <translation>Katalog:</translation>
    </message>
    <message>
        <source>Selection name:</source>
        <translation>Auswahlname:</translation>
    </message>
    <message>
        <source>Style:</source>
        <translation>Stil:</translation>
    </message>
    <message>
        <source>Manufacturer:</source>
        <translation>Hersteller:</translation>
    </message>
    <message>
        <source>Contact:</source>
        <translation>Kontakt:</translation>
    </message>
    <message>
        <source>Logo of the manufacturer</source>
        <translation>Logo des Herstellers</translation>
    </message>
    <message>
        <source>Nothing is chosen</source>
        <translation>Nichts ausgewählt</translation>
    </message>
    <message>
        <source>Cannot be read: %1</source>
        <translation>Nicht lesbar: %1</translation>
    </message>
    <message>
        <source>The picture is broken.</source>
        <translation>Das Bild ist beschädigt.</translation>
    </message>
    <message>
        <source>Number %1, not in the records</source>
        <translation>Nummer %1, nicht in den Herstellerdaten</translation>
    </message>
</context>
<context>
    <name>FilterBar</name>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>Edit…</source>
        <translation>Bearbeiten …</translation>
    </message>
    <message>
        <source>Edit the filters</source>
        <translation>Die Filter bearbeiten</translation>
    </message>
</context>
<context>
    <name>FilterEditor</name>
    <message>
        <source>Filters</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>Catalogs in the filter</source>
        <translation>Kataloge im Filter</translation>
    </message>
    <message>
        <source>&amp;New</source>
        <translation>&amp;Neu</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>Filters:</source>
        <translation>Filter:</translation>
    </message>
    <message>
        <source>Catalogs in the filter:</source>
        <translation>Kataloge im Filter:</translation>
    </message>
    <message>
        <source>New filter</source>
        <translation>Neuer Filter</translation>
    </message>
    <message>
        <source>Every filter needs a name.</source>
        <translation>Jeder Filter braucht einen Namen.</translation>
    </message>
    <message>
        <source>The filters could not be saved.</source>
        <translation>Die Filter konnten nicht gespeichert werden.</translation>
    </message>
</context>
<context>
    <name>ImportController</name>
    <message>
        <source>Import</source>
        <translation>Import</translation>
    </message>
    <message>
        <source>it holds no library</source>
        <translation>es enthält keine Bibliothek</translation>
    </message>
    <message>
        <source>cancelled</source>
        <translation>abgebrochen</translation>
    </message>
</context>
<context>
    <name>LibraryModel</name>
    <message>
        <source>Core</source>
        <translation>Grundkataloge</translation>
    </message>
    <message>
        <source>Bonus</source>
        <translation>Zusatzkataloge</translation>
    </message>
    <message>
        <source>Manufacturers</source>
        <translation>Hersteller</translation>
    </message>
    <message>
        <source>My libraries</source>
        <translation>Eigene Bibliotheken</translation>
    </message>
    <message>
        <source>Cannot be read: %1</source>
        <translation>Nicht lesbar: %1</translation>
    </message>
</context>
<context>
    <name>LogDialog</name>
    <message>
        <source>The log is empty.</source>
        <translation>Das Protokoll ist leer.</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>Log entries, the newest first</source>
        <translation>Protokolleinträge, die neuesten zuerst</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Library</source>
        <translation>Bibliothek</translation>
    </message>
    <message>
        <source>%1 was imported.</source>
        <translation>%1 wurde importiert.</translation>
    </message>
    <message>
        <source>%1 was not imported: %2</source>
        <translation>%1 wurde nicht importiert: %2</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Import archive…</source>
        <translation>Archiv &amp;importieren …</translation>
    </message>
    <message>
        <source>&amp;Preferences…</source>
        <translation>&amp;Einstellungen …</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Library</source>
        <translation>&amp;Bibliothek</translation>
    </message>
    <message>
        <source>Check for &amp;updates</source>
        <translation>Nach &amp;Aktualisierungen suchen</translation>
    </message>
    <message>
        <source>&amp;Cancel the update</source>
        <translation>Aktualisierung ab&amp;brechen</translation>
    </message>
    <message>
        <source>Refresh &amp;manufacturers…</source>
        <translation>&amp;Herstellerdaten auffrischen …</translation>
    </message>
    <message>
        <source>&amp;Search</source>
        <translation>&amp;Suchen</translation>
    </message>
    <message>
        <source>Edit &amp;filters…</source>
        <translation>&amp;Filter bearbeiten …</translation>
    </message>
    <message>
        <source>Show the &amp;log</source>
        <translation>&amp;Protokoll zeigen</translation>
    </message>
    <message>
        <source>The log has the details.</source>
        <translation>Einzelheiten stehen im Protokoll.</translation>
    </message>
    <message>
        <source>Import archives</source>
        <translation>Archive importieren</translation>
    </message>
    <message>
        <source>Library archives (*.orvlibz)</source>
        <translation>Bibliotheksarchive (*.orvlibz)</translation>
    </message>
    <message>
        <source>The preferences were not saved: %1</source>
        <translation>Die Einstellungen wurden nicht gespeichert: %1</translation>
    </message>
    <message>
        <source>Copied to %1.</source>
        <translation>Nach %1 kopiert.</translation>
    </message>
    <message>
        <source>Not copied to %1: %2</source>
        <translation>Nicht nach %1 kopiert: %2</translation>
    </message>
</context>
<context>
    <name>ManufacturerPreview</name>
    <message>
        <source>New: %1</source>
        <translation>Neu: %1</translation>
    </message>
    <message>
        <source>Newer: %1</source>
        <translation>Neuer: %1</translation>
    </message>
    <message>
        <source>Older: %1</source>
        <translation>Älter: %1</translation>
    </message>
    <message>
        <source>Removed: %1</source>
        <translation>Entfernt: %1</translation>
    </message>
    <message>
        <source>Fetching the records…</source>
        <translation>Die Herstellerdaten werden geladen …</translation>
    </message>
    <message>
        <source>Manufacturers</source>
        <translation>Hersteller</translation>
    </message>
    <message>
        <source>What the refresh changes</source>
        <translation>Was das Auffrischen ändert</translation>
    </message>
    <message>
        <source>The records could not be fetched from %1; those that you have stay.</source>
        <translation>Von %1 konnten keine Herstellerdaten geladen werden; die vorhandenen bleiben.</translation>
    </message>
    <message>
        <source>The records are up to date.</source>
        <translation>Die Herstellerdaten sind aktuell.</translation>
    </message>
    <message>
        <source>The refresh replaces all records. It changes:</source>
        <translation>Das Auffrischen ersetzt alle Herstellerdaten. Es ändert:</translation>
    </message>
    <message>
        <source>The manufacturer records were refreshed.</source>
        <translation>Die Herstellerdaten wurden aufgefrischt.</translation>
    </message>
</context>
<context>
    <name>MessageBar</name>
    <message>
        <source>Put the message away</source>
        <translation>Die Meldung weglegen</translation>
    </message>
</context>
<context>
    <name>PreferencesDialog</name>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>&amp;Catalog service:</source>
        <translation>&amp;Katalogdienst:</translation>
    </message>
    <message>
        <source>&amp;Product:</source>
        <translation>&amp;Produkt:</translation>
    </message>
    <message>
        <source>&amp;Version:</source>
        <translation>&amp;Version:</translation>
    </message>
    <message>
        <source>&amp;Manufacturer data:</source>
        <translation>&amp;Herstellerdaten:</translation>
    </message>
    <message>
        <source>Manufacturer &amp;logos:</source>
        <translation>Hersteller&amp;logos:</translation>
    </message>
    <message>
        <source>Pro&amp;xy:</source>
        <translation>Pro&amp;xy:</translation>
    </message>
    <message>
        <source>as the system says</source>
        <translation>wie im System eingestellt</translation>
    </message>
    <message>
        <source>Check for updates at &amp;start</source>
        <translation>Beim &amp;Start nach Aktualisierungen suchen</translation>
    </message>
    <message>
        <source>As the system</source>
        <translation>Wie das System</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Hell</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dunkel</translation>
    </message>
    <message>
        <source>C&amp;olours:</source>
        <translation>&amp;Farben:</translation>
    </message>
    <message>
        <source>&amp;Bonus catalogs:</source>
        <translation>&amp;Zusatzkataloge:</translation>
    </message>
    <message>
        <source>Manu&amp;facturer catalogs:</source>
        <translation>He&amp;rstellerkataloge:</translation>
    </message>
    <message>
        <source>those that are there; more by name</source>
        <translation>die vorhandenen; weitere mit Namen</translation>
    </message>
    <message>
        <source>Names of catalogs to fetch, separated by semicolons</source>
        <translation>Namen der Kataloge, die geladen werden sollen, durch Strichpunkte getrennt</translation>
    </message>
</context>
<context>
    <name>SearchPane</name>
    <message>
        <source>Search the library</source>
        <translation>Bibliothek durchsuchen</translation>
    </message>
    <message>
        <source>Category to search in</source>
        <translation>Kategorie, in der gesucht wird</translation>
    </message>
    <message>
        <source>Everywhere</source>
        <translation>Überall</translation>
    </message>
    <message>
        <source>Core</source>
        <translation>Grundkataloge</translation>
    </message>
    <message>
        <source>Bonus</source>
        <translation>Zusatzkataloge</translation>
    </message>
    <message>
        <source>Manufacturers</source>
        <translation>Hersteller</translation>
    </message>
    <message>
        <source>My libraries</source>
        <translation>Eigene Bibliotheken</translation>
    </message>
    <message>
        <source>Found items</source>
        <translation>Gefundene Objekte</translation>
    </message>
    <message>
        <source>Searching…</source>
        <translation>Suche läuft …</translation>
    </message>
    <message numerus="yes">
        <source>%n item(s) found</source>
        <translation>
            <numerusform>%n Objekt gefunden</numerusform>
            <numerusform>%n Objekte gefunden</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The first %n item(s) found</source>
        <translation>
            <numerusform>Das erste gefundene Objekt</numerusform>
            <numerusform>Die ersten %n gefundenen Objekte</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n catalog(s) cannot be read</source>
        <translation>
            <numerusform>%n Katalog ist nicht lesbar</numerusform>
            <numerusform>%n Kataloge sind nicht lesbar</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>StatusLine</name>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
</context>
<context>
    <name>TreePane</name>
    <message>
        <source>Library content</source>
        <translation>Inhalt der Bibliothek</translation>
    </message>
    <message>
        <source>The library is empty.</source>
        <translation>Die Bibliothek ist leer.</translation>
    </message>
    <message>
        <source>Fetch the content</source>
        <translation>Inhalte laden</translation>
    </message>
    <message>
        <source>Import an archive…</source>
        <translation>Archiv importieren …</translation>
    </message>
    <message>
        <source>Fetch the catalogs from the service, or import an archive that you have.</source>
        <translation>Laden Sie die Kataloge vom Dienst oder importieren Sie ein vorhandenes Archiv.</translation>
    </message>
</context>
<context>
    <name>UpdateController</name>
    <message numerus="yes">
        <source>%1 and %n more</source>
        <translation>
            <numerusform>%1 und %n weiterer</numerusform>
            <numerusform>%1 und %n weitere</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1/s, about %n second(s) left</source>
        <translation>
            <numerusform>%1/s, noch etwa %n Sekunde</numerusform>
            <numerusform>%1/s, noch etwa %n Sekunden</numerusform>
        </translation>
    </message>
    <message>
        <source>The update failed: %1</source>
        <translation>Die Aktualisierung ist fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>The update was cancelled.</source>
        <translation>Die Aktualisierung wurde abgebrochen.</translation>
    </message>
    <message>
        <source>Updated: %1.</source>
        <translation>Aktualisiert: %1.</translation>
    </message>
    <message>
        <source>All catalogs are up to date.</source>
        <translation>Alle Kataloge sind aktuell.</translation>
    </message>
    <message>
        <source>The catalog service cannot be reached; the library stays as it is.</source>
        <translation>Der Katalogdienst ist nicht erreichbar; die Bibliothek bleibt, wie sie ist.</translation>
    </message>
    <message>
        <source>Some catalogs could not be checked.</source>
        <translation>Einige Kataloge konnten nicht geprüft werden.</translation>
    </message>
    <message>
        <source>Some catalogs could not be updated: %1</source>
        <translation>Einige Kataloge konnten nicht aktualisiert werden: %1</translation>
    </message>
    <message numerus="yes">
        <source>%1/s, about %n minute(s) left</source>
        <translation>
            <numerusform>%1/s, noch etwa %n Minute</numerusform>
            <numerusform>%1/s, noch etwa %n Minuten</numerusform>
        </translation>
    </message>
</context>
</TS>
