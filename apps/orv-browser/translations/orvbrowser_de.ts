<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>ActivityModel</name>
    <message>
        <source>waiting</source>
        <translation>wartet</translation>
    </message>
    <message>
        <source>imported</source>
        <translation>importiert</translation>
    </message>
    <message>
        <source>installed</source>
        <translation>installiert</translation>
    </message>
    <message>
        <source>failed: %1</source>
        <translation>fehlgeschlagen: %1</translation>
    </message>
    <message>
        <source>cancelled</source>
        <translation>abgebrochen</translation>
    </message>
    <message>
        <source>, </source>
        <translation>, </translation>
    </message>
</context>
<context>
    <name>ActivityPane</name>
    <message>
        <source>Activities</source>
        <translation>Vorgänge</translation>
    </message>
    <message>
        <source>Retry</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Retry %1</source>
        <translation>%1 wiederholen</translation>
    </message>
</context>
<context>
    <name>AddressCheck</name>
    <message>
        <source>“%1” is no address of a service. An address begins with http:// or https:// and the name of a host.</source>
        <translation>„%1“ ist keine Adresse eines Dienstes. Eine Adresse beginnt mit http:// oder https:// und dem Namen eines Rechners.</translation>
    </message>
</context>
<context>
    <name>ArchiveDrop</name>
    <message>
        <source>Drop the archive to import it</source>
        <translation>Archiv ablegen, um es zu importieren</translation>
    </message>
</context>
<context>
    <name>Breadcrumbs</name>
    <message>
        <source>Go to %1</source>
        <translation>Zu %1</translation>
    </message>
</context>
<context>
    <name>CatalogBoxes</name>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
</context>
<context>
    <name>DataSize</name>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
</context>
<context>
    <name>DetailsPane</name>
    <message>
        <source>Details of the selection</source>
        <translation>Angaben zur Auswahl</translation>
    </message>
</context>
<context>
    <name>FacetChip</name>
    <message>
        <source>All</source>
        <translation>Alle</translation>
    </message>
    <message>
        <source>%1 (%2)</source>
        <translation>%1 (%2)</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>FilterActions</name>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>The choice of the filter was not saved: %1</source>
        <translation>Die Wahl des Filters wurde nicht gespeichert: %1</translation>
    </message>
    <message>
        <source>Save as filter</source>
        <translation>Als Filter speichern</translation>
    </message>
    <message>
        <source>The filter will let these catalogs through: %1.</source>
        <translation>Der Filter lässt diese Kataloge durch: %1.</translation>
    </message>
    <message>
        <source>Name of the filter:</source>
        <translation>Name des Filters:</translation>
    </message>
    <message>
        <source>A filter needs a name.</source>
        <translation>Ein Filter braucht einen Namen.</translation>
    </message>
    <message>
        <source>There is a filter “%1” already.</source>
        <translation>Einen Filter „%1“ gibt es schon.</translation>
    </message>
    <message>
        <source>The filter was not saved: %1</source>
        <translation>Der Filter wurde nicht gespeichert: %1</translation>
    </message>
    <message>
        <source>Edit the filters</source>
        <translation>Die Filter bearbeiten</translation>
    </message>
    <message>
        <source>The filters were not changed: %1</source>
        <translation>Die Filter wurden nicht geändert: %1</translation>
    </message>
</context>
<context>
    <name>FilterChip</name>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>Save as filter…</source>
        <translation>Als Filter speichern …</translation>
    </message>
    <message>
        <source>Edit the filters…</source>
        <translation>Die Filter bearbeiten …</translation>
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
        <source>Two filters have the name “%1”. Give each a name of its own.</source>
        <translation>Zwei Filter heißen „%1“. Geben Sie jedem einen eigenen Namen.</translation>
    </message>
    <message>
        <source>The filters could not be saved.</source>
        <translation>Die Filter konnten nicht gespeichert werden.</translation>
    </message>
</context>
<context>
    <name>FirstStart</name>
    <message>
        <source>Asking the service…</source>
        <translation>Der Dienst wird gefragt …</translation>
    </message>
    <message>
        <source>No catalogs can be fetched from there: %1</source>
        <translation>Von dort können keine Kataloge geladen werden: %1</translation>
    </message>
    <message>
        <source>The service answers, but it has no catalogs.</source>
        <translation>Der Dienst antwortet, hat aber keine Kataloge.</translation>
    </message>
    <message>
        <source>The service answers: %1, %2</source>
        <translation>Der Dienst antwortet: %1, %2</translation>
    </message>
    <message numerus="yes">
        <source>%Ln catalog(s)</source>
        <translation>
            <numerusform>%Ln Katalog</numerusform>
            <numerusform>%Ln Kataloge</numerusform>
        </translation>
    </message>
    <message>
        <source>The sample content could not be made: %1</source>
        <translation>Die Beispiele konnten nicht erzeugt werden: %1</translation>
    </message>
</context>
<context>
    <name>FirstStartPage</name>
    <message>
        <source>Bonus catalogs</source>
        <translation>Zusatzkataloge</translation>
    </message>
    <message>
        <source>Manufacturer catalogs</source>
        <translation>Herstellerkataloge</translation>
    </message>
    <message>
        <source>The library is empty.</source>
        <translation>Die Bibliothek ist leer.</translation>
    </message>
    <message>
        <source>&amp;Address of the catalog service:</source>
        <translation>&amp;Adresse des Katalogdienstes:</translation>
    </message>
    <message>
        <source>Address of the catalog service</source>
        <translation>Adresse des Katalogdienstes</translation>
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
        <source>Try with sample content</source>
        <translation>Mit Beispielen ausprobieren</translation>
    </message>
    <message>
        <source>The catalogs are on their way. Each one appears as soon as it is here.</source>
        <translation>Die Kataloge sind unterwegs. Jeder erscheint, sobald er da ist.</translation>
    </message>
    <message>
        <source>Fetch the catalogs from a service, or import an archive that you have. You can also drop an archive anywhere on this window.</source>
        <translation>Laden Sie die Kataloge von einem Dienst, oder importieren Sie ein Archiv, das Sie haben. Sie können ein Archiv auch irgendwo auf diesem Fenster ablegen.</translation>
    </message>
</context>
<context>
    <name>GalleryBar</name>
    <message>
        <source>Sort by</source>
        <translation>Sortieren nach</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Catalog</source>
        <translation>Katalog</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Stil</translation>
    </message>
    <message>
        <source>Manufacturer</source>
        <translation>Hersteller</translation>
    </message>
    <message>
        <source>Size of the pictures</source>
        <translation>Größe der Bilder</translation>
    </message>
    <message>
        <source>Last first</source>
        <translation>Umgekehrte Reihenfolge</translation>
    </message>
    <message>
        <source>Show pictures</source>
        <translation>Bilder zeigen</translation>
    </message>
    <message>
        <source>Show a list</source>
        <translation>Liste zeigen</translation>
    </message>
    <message numerus="yes">
        <source>%Ln item(s)</source>
        <translation>
            <numerusform>%Ln Objekt</numerusform>
            <numerusform>%Ln Objekte</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>GalleryModel</name>
    <message>
        <source>%1, from %2</source>
        <translation>%1, aus %2</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Catalog</source>
        <translation>Katalog</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Stil</translation>
    </message>
    <message>
        <source>Manufacturer</source>
        <translation>Hersteller</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
</context>
<context>
    <name>GalleryViews</name>
    <message>
        <source>Items</source>
        <translation>Objekte</translation>
    </message>
    <message>
        <source>Columns</source>
        <translation>Spalten</translation>
    </message>
</context>
<context>
    <name>ImportController</name>
    <message>
        <source>it is not the last import any more</source>
        <translation>er ist nicht mehr der letzte Import</translation>
    </message>
    <message>
        <source>Not undone: %1</source>
        <translation>Nicht rückgängig gemacht: %1</translation>
    </message>
    <message>
        <source>an import goes on</source>
        <translation>ein Import ist im Gange</translation>
    </message>
    <message>
        <source>The import was taken back.</source>
        <translation>Der Import wurde zurückgenommen.</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>Import</translation>
    </message>
    <message>
        <source>The import of %1 cannot be taken back any more, because it was changed since.</source>
        <translation>Der Import von %1 kann nicht mehr zurückgenommen werden, weil die Bibliothek danach geändert wurde.</translation>
    </message>
</context>
<context>
    <name>ImportProgress</name>
    <message>
        <source>downloading</source>
        <translation>wird geholt</translation>
    </message>
    <message>
        <source>reading</source>
        <translation>wird gelesen</translation>
    </message>
    <message>
        <source>checking</source>
        <translation>wird geprüft</translation>
    </message>
    <message>
        <source>putting in place</source>
        <translation>wird eingesetzt</translation>
    </message>
</context>
<context>
    <name>ImportSummary</name>
    <message>
        <source>%1 was not imported: %2</source>
        <translation>%1 wurde nicht importiert: %2</translation>
    </message>
    <message numerus="yes">
        <source>%n of %1 archive(s) imported.</source>
        <translation>
            <numerusform>%n von %1 Archiven wurde importiert.</numerusform>
            <numerusform>%n von %1 Archiven wurden importiert.</numerusform>
        </translation>
    </message>
    <message>
        <source>%1 was imported.</source>
        <translation>%1 wurde importiert.</translation>
    </message>
    <message numerus="yes">
        <source>%n more not imported; the log has the reasons.</source>
        <translation>
            <numerusform>%n weiteres wurde nicht importiert; die Gründe stehen im Protokoll.</numerusform>
            <numerusform>%n weitere wurden nicht importiert; die Gründe stehen im Protokoll.</numerusform>
        </translation>
    </message>
    <message>
        <source>The import was cancelled.</source>
        <translation>Der Import wurde abgebrochen.</translation>
    </message>
</context>
<context>
    <name>ItemActions</name>
    <message>
        <source>Add to favourites</source>
        <translation>Zu den Favoriten</translation>
    </message>
    <message>
        <source>Remove from favourites</source>
        <translation>Aus den Favoriten entfernen</translation>
    </message>
</context>
<context>
    <name>ItemDetails</name>
    <message>
        <source>Favourite</source>
        <translation>Favorit</translation>
    </message>
    <message>
        <source>Catalog:</source>
        <translation>Katalog:</translation>
    </message>
    <message>
        <source>Folder:</source>
        <translation>Ordner:</translation>
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
        <source>Picture of %1</source>
        <translation>Bild von %1</translation>
    </message>
    <message>
        <source>★ Favourite</source>
        <translation>★ Favorit</translation>
    </message>
    <message>
        <source>☆ Make it a favourite</source>
        <translation>☆ Zum Favoriten machen</translation>
    </message>
    <message>
        <source>Show in folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>The picture is broken.</source>
        <translation>Das Bild ist beschädigt.</translation>
    </message>
    <message>
        <source>new since you last looked</source>
        <translation>neu, seit Sie zuletzt hingesehen haben</translation>
    </message>
    <message>
        <source>changed since you last looked</source>
        <translation>geändert, seit Sie zuletzt hingesehen haben</translation>
    </message>
    <message>
        <source>News:</source>
        <translation>Neuigkeit:</translation>
    </message>
    <message>
        <source>Copy to</source>
        <translation>Kopieren nach</translation>
    </message>
    <message>
        <source>Similar</source>
        <translation>Ähnlich</translation>
    </message>
</context>
<context>
    <name>ItemPreview</name>
    <message>
        <source>Picture of %1</source>
        <translation>Bild von %1</translation>
    </message>
</context>
<context>
    <name>LibraryActions</name>
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
</context>
<context>
    <name>LibraryCopy</name>
    <message>
        <source>the library cannot be written</source>
        <translation>die Bibliothek kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>the library is gone</source>
        <translation>die Bibliothek ist nicht mehr da</translation>
    </message>
    <message>
        <source>another program keeps changing the library</source>
        <translation>ein anderes Programm ändert die Bibliothek fortwährend</translation>
    </message>
</context>
<context>
    <name>LibraryName</name>
    <message>
        <source>A name is needed.</source>
        <translation>Ein Name ist nötig.</translation>
    </message>
    <message>
        <source>The name must not hold %1.</source>
        <translation>Der Name darf %1 nicht enthalten.</translation>
    </message>
    <message>
        <source>The name is too long.</source>
        <translation>Der Name ist zu lang.</translation>
    </message>
    <message>
        <source>The name holds half a letter.</source>
        <translation>Der Name enthält einen halben Buchstaben.</translation>
    </message>
    <message>
        <source>The name must not begin or end with a full stop.</source>
        <translation>Der Name darf nicht mit einem Punkt anfangen oder enden.</translation>
    </message>
    <message>
        <source>There is a library of that name already.</source>
        <translation>Eine Bibliothek dieses Namens gibt es schon.</translation>
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
        <source>Favourites and what you looked at last were not saved: %1</source>
        <translation>Die Favoriten und die zuletzt angesehenen Einträge wurden nicht gespeichert: %1</translation>
    </message>
    <message>
        <source>%1 is not in the library any more.</source>
        <translation>%1 ist nicht mehr in der Bibliothek.</translation>
    </message>
</context>
<context>
    <name>MakerCard</name>
    <message>
        <source>Phone: %1</source>
        <translation>Telefon: %1</translation>
    </message>
    <message>
        <source>Fax: %1</source>
        <translation>Fax: %1</translation>
    </message>
    <message>
        <source>Logo of the manufacturer</source>
        <translation>Logo des Herstellers</translation>
    </message>
    <message>
        <source>Show all items of the manufacturer</source>
        <translation>Alle Objekte des Herstellers zeigen</translation>
    </message>
    <message>
        <source>Show all</source>
        <translation>Alle zeigen</translation>
    </message>
    <message numerus="yes">
        <source>Show all %Ln</source>
        <translation>
            <numerusform>Alle zeigen: %Ln</numerusform>
            <numerusform>Alle %Ln zeigen</numerusform>
        </translation>
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
    <message numerus="yes">
        <source>%n logo(s) could not be fetched.</source>
        <translation>
            <numerusform>%n Logo konnte nicht geladen werden.</numerusform>
            <numerusform>%n Logos konnten nicht geladen werden.</numerusform>
        </translation>
    </message>
    <message>
        <source>The manufacturer records were not refreshed: %1</source>
        <translation>Die Herstellerdaten wurden nicht aufgefrischt: %1</translation>
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
    <name>Names</name>
    <message>
        <source>Number %1, not in the records</source>
        <translation>Nummer %1, nicht in den Herstellerdaten</translation>
    </message>
</context>
<context>
    <name>NewBadge</name>
    <message>
        <source>New</source>
        <translation>Neu</translation>
    </message>
    <message>
        <source>Changed</source>
        <translation>Geändert</translation>
    </message>
</context>
<context>
    <name>NothingFoundPage</name>
    <message>
        <source>Nothing found</source>
        <translation>Nichts gefunden</translation>
    </message>
    <message>
        <source>Search everywhere</source>
        <translation>Überall suchen</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>“%1” holds no items.</source>
        <translation>„%1“ enthält keine Objekte.</translation>
    </message>
    <message>
        <source>Nothing in “%1” fits: %2.</source>
        <translation>In „%1“ passt nichts zu: %2.</translation>
    </message>
    <message>
        <source>, </source>
        <translation>, </translation>
    </message>
    <message numerus="yes">
        <source>%Ln item(s) elsewhere</source>
        <translation>
            <numerusform>%Ln Objekt anderswo</numerusform>
            <numerusform>%Ln Objekte anderswo</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>OwnActions</name>
    <message>
        <source>Select items first.</source>
        <translation>Wählen Sie zuerst Objekte aus.</translation>
    </message>
    <message>
        <source>&amp;New library…</source>
        <translation>&amp;Neue Bibliothek…</translation>
    </message>
    <message>
        <source>New library</source>
        <translation>Neue Bibliothek</translation>
    </message>
    <message>
        <source>Name of the new library:</source>
        <translation>Name der neuen Bibliothek:</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Umbenennen</translation>
    </message>
    <message>
        <source>New name of %1:</source>
        <translation>Neuer Name von %1:</translation>
    </message>
</context>
<context>
    <name>OwnCatalog</name>
    <message>
        <source>Items</source>
        <translation>Objekte</translation>
    </message>
    <message>
        <source>an item is gone</source>
        <translation>ein Objekt ist nicht mehr da</translation>
    </message>
    <message>
        <source>the library cannot be written</source>
        <translation>die Bibliothek kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>the items are gone already</source>
        <translation>die Objekte sind schon weg</translation>
    </message>
    <message>
        <source>it is gone already</source>
        <translation>es ist schon weg</translation>
    </message>
</context>
<context>
    <name>OwnFiles</name>
    <message>
        <source>%1 cannot be written</source>
        <translation>%1 kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>the library is gone</source>
        <translation>die Bibliothek ist nicht mehr da</translation>
    </message>
    <message>
        <source>the bin does not take it</source>
        <translation>der Papierkorb nimmt sie nicht an</translation>
    </message>
    <message>
        <source>only a part came to the bin, and that cannot be moved back</source>
        <translation>nur ein Teil liegt im Papierkorb und lässt sich nicht zurücklegen</translation>
    </message>
    <message>
        <source>it is not in the bin any more</source>
        <translation>sie liegt nicht mehr im Papierkorb</translation>
    </message>
    <message>
        <source>%1 is there again</source>
        <translation>%1 ist wieder da</translation>
    </message>
    <message>
        <source>%1 is there already</source>
        <translation>%1 gibt es schon</translation>
    </message>
</context>
<context>
    <name>OwnLibraries</name>
    <message>
        <source>%1 was not renamed: %2</source>
        <translation>%1 wurde nicht umbenannt: %2</translation>
    </message>
    <message>
        <source>New library</source>
        <translation>Neue Bibliothek</translation>
    </message>
    <message>
        <source>%1 is there.</source>
        <translation>%1 ist da.</translation>
    </message>
    <message>
        <source>%1 is in the bin.</source>
        <translation>%1 liegt im Papierkorb.</translation>
    </message>
    <message>
        <source>%1 was not made: %2</source>
        <translation>%1 wurde nicht angelegt: %2</translation>
    </message>
    <message>
        <source>Delete %1</source>
        <translation>%1 löschen</translation>
    </message>
    <message>
        <source>%1 is in the bin. Undo brings it back.</source>
        <translation>%1 liegt im Papierkorb. Rückgängig holt sie zurück.</translation>
    </message>
    <message>
        <source>%1 is back.</source>
        <translation>%1 ist wieder da.</translation>
    </message>
    <message>
        <source>%1 was not deleted: %2</source>
        <translation>%1 wurde nicht gelöscht: %2</translation>
    </message>
    <message>
        <source>%1 is now called %2.</source>
        <translation>%1 heißt jetzt %2.</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Umbenennen</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Copied to %1.</source>
        <translation>Nach %1 kopiert.</translation>
    </message>
    <message>
        <source>The copies are gone again.</source>
        <translation>Die Kopien sind wieder weg.</translation>
    </message>
    <message>
        <source>Not copied to %1: %2</source>
        <translation>Nicht nach %1 kopiert: %2</translation>
    </message>
    <message numerus="yes">
        <source>Delete %Ln item(s)</source>
        <translation>
            <numerusform>%Ln Objekt löschen</numerusform>
            <numerusform>%Ln Objekte löschen</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln item(s) deleted. Undo brings them back.</source>
        <translation>
            <numerusform>%Ln Objekt gelöscht. Rückgängig holt es zurück.</numerusform>
            <numerusform>%Ln Objekte gelöscht. Rückgängig holt sie zurück.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln item(s) are back.</source>
        <translation>
            <numerusform>%Ln Objekt ist wieder da.</numerusform>
            <numerusform>%Ln Objekte sind wieder da.</numerusform>
        </translation>
    </message>
    <message>
        <source>Not deleted: %1</source>
        <translation>Nicht gelöscht: %1</translation>
    </message>
    <message>
        <source>Not done again: %1</source>
        <translation>Nicht wiederholt: %1</translation>
    </message>
    <message>
        <source>Not undone: %1</source>
        <translation>Nicht rückgängig gemacht: %1</translation>
    </message>
</context>
<context>
    <name>OwnSubject</name>
    <message>
        <source>%1 comes from the service. Only your own libraries can be changed.</source>
        <translation>%1 kommt vom Dienst. Nur eigene Bibliotheken können geändert werden.</translation>
    </message>
    <message>
        <source>Select an item or a library of your own first.</source>
        <translation>Wählen Sie zuerst ein Objekt oder eine eigene Bibliothek aus.</translation>
    </message>
    <message>
        <source>Only one item can be renamed at a time.</source>
        <translation>Es kann immer nur ein Objekt umbenannt werden.</translation>
    </message>
    <message>
        <source>Folders cannot be deleted; select the items in it, or the library.</source>
        <translation>Ordner können nicht gelöscht werden; wählen Sie die Objekte darin aus oder die Bibliothek.</translation>
    </message>
</context>
<context>
    <name>PlaceDetails</name>
    <message>
        <source>Items:</source>
        <translation>Objekte:</translation>
    </message>
    <message>
        <source>Folders:</source>
        <translation>Ordner:</translation>
    </message>
    <message>
        <source>Version:</source>
        <translation>Version:</translation>
    </message>
    <message>
        <source>Size:</source>
        <translation>Größe:</translation>
    </message>
    <message>
        <source>Date:</source>
        <translation>Datum:</translation>
    </message>
    <message>
        <source>Select an item to see it here. The space bar shows it large.</source>
        <translation>Wählen Sie ein Objekt, um es hier zu sehen. Die Leertaste zeigt es groß.</translation>
    </message>
    <message>
        <source>Check for updates</source>
        <translation>Nach Aktualisierungen suchen</translation>
    </message>
    <message>
        <source>Fetch again</source>
        <translation>Erneut laden</translation>
    </message>
    <message>
        <source>Show the file</source>
        <translation>Datei zeigen</translation>
    </message>
    <message>
        <source>Cannot be read: %1</source>
        <translation>Nicht lesbar: %1</translation>
    </message>
    <message>
        <source>State:</source>
        <translation>Zustand:</translation>
    </message>
    <message>
        <source>Gone:</source>
        <translation>Entfallen:</translation>
    </message>
    <message>
        <source>Mark all as seen</source>
        <translation>Alles als gesehen vermerken</translation>
    </message>
    <message>
        <source>an update is waiting</source>
        <translation>eine Aktualisierung steht bereit</translation>
    </message>
    <message>
        <source>Last check:</source>
        <translation>Letzte Suche:</translation>
    </message>
</context>
<context>
    <name>PlaceNames</name>
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
        <source>Everything</source>
        <translation>Alles</translation>
    </message>
    <message>
        <source>Favourites</source>
        <translation>Favoriten</translation>
    </message>
    <message>
        <source>Recent</source>
        <translation>Zuletzt angesehen</translation>
    </message>
    <message>
        <source>What&apos;s new</source>
        <translation>Neues</translation>
    </message>
</context>
<context>
    <name>PlacesModel</name>
    <message>
        <source>Cannot be read: %1</source>
        <translation>Nicht lesbar: %1</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>an update is waiting</source>
        <translation>eine Aktualisierung steht bereit</translation>
    </message>
    <message numerus="yes">
        <source>%Ln item(s) new or changed</source>
        <translation>
            <numerusform>%Ln Objekt neu oder geändert</numerusform>
            <numerusform>%Ln Objekte neu oder geändert</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>PlacesPane</name>
    <message>
        <source>Places</source>
        <translation>Orte</translation>
    </message>
    <message>
        <source>New library…</source>
        <translation>Neue Bibliothek…</translation>
    </message>
    <message>
        <source>Make a library of your own</source>
        <translation>Eine eigene Bibliothek anlegen</translation>
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
    <message>
        <source>Service</source>
        <translation>Dienst</translation>
    </message>
    <message>
        <source>Network</source>
        <translation>Netz</translation>
    </message>
    <message>
        <source>Disk</source>
        <translation>Platte</translation>
    </message>
    <message>
        <source>This window</source>
        <translation>Dieses Fenster</translation>
    </message>
    <message>
        <source>C&amp;ertificates:</source>
        <translation>Z&amp;ertifikate:</translation>
    </message>
    <message>
        <source>&amp;Retries of a request:</source>
        <translation>&amp;Wiederholungen einer Anfrage:</translation>
    </message>
    <message>
        <source>Co&amp;nnections at once:</source>
        <translation>&amp;Verbindungen zugleich:</translation>
    </message>
    <message>
        <source> KB/s</source>
        <translation> kB/s</translation>
    </message>
    <message>
        <source>no limit</source>
        <translation>ohne Grenze</translation>
    </message>
    <message>
        <source>Receive at &amp;most:</source>
        <translation>&amp;Höchstens empfangen:</translation>
    </message>
    <message>
        <source>Leave &amp;free on the disk:</source>
        <translation>Auf der Platte &amp;frei lassen:</translation>
    </message>
    <message>
        <source>as usual</source>
        <translation>wie üblich</translation>
    </message>
    <message>
        <source>…if the last check is &amp;older than:</source>
        <translation>…wenn die &amp;letzte Suche älter ist als:</translation>
    </message>
    <message>
        <source> h</source>
        <translation> Std.</translation>
    </message>
    <message>
        <source>On a metere&amp;d connection:</source>
        <translation>Bei &amp;getakteter Verbindung:</translation>
    </message>
    <message>
        <source>only look what is new</source>
        <translation>nur nachsehen, was neu ist</translation>
    </message>
    <message>
        <source>fetch updates, too</source>
        <translation>Neues auch holen</translation>
    </message>
    <message>
        <source>Former &amp;versions of a catalog:</source>
        <translation>Frühere &amp;Fassungen eines Katalogs:</translation>
    </message>
    <message>
        <source> MB</source>
        <translation> MB</translation>
    </message>
    <message>
        <source>All of them &amp;together:</source>
        <translation>Alle &amp;zusammen:</translation>
    </message>
    <message>
        <source>Here, a variable of the environment goes before this.</source>
        <translation>Hier geht eine Umgebungsvariable dieser Angabe vor.</translation>
    </message>
</context>
<context>
    <name>Reasons</name>
    <message>
        <source>%1 answers with web pages (a login page?), not as a catalog service</source>
        <translation>%1 antwortet mit Webseiten (einer Anmeldeseite?) und nicht wie ein Katalogdienst</translation>
    </message>
    <message>
        <source>a web page instead of an answer</source>
        <translation>eine Webseite statt einer Antwort</translation>
    </message>
    <message>
        <source>a web page instead of a catalog</source>
        <translation>eine Webseite statt eines Katalogs</translation>
    </message>
    <message>
        <source>another version than announced: %1 bytes instead of %2</source>
        <translation>eine andere Fassung als angekündigt: %1 statt %2 Bytes</translation>
    </message>
    <message>
        <source>another version than announced: tag %1 instead of %2</source>
        <translation>eine andere Fassung als angekündigt: Kennung %1 statt %2</translation>
    </message>
    <message>
        <source>no answer</source>
        <translation>keine Antwort</translation>
    </message>
    <message>
        <source>the catalog web service was not found: %1</source>
        <translation>der Katalogdienst wurde nicht gefunden: %1</translation>
    </message>
    <message>
        <source>the content index could not be fetched: %1</source>
        <translation>das Inhaltsverzeichnis konnte nicht geladen werden: %1</translation>
    </message>
    <message>
        <source>no catalog could be checked: %1</source>
        <translation>kein Katalog konnte geprüft werden: %1</translation>
    </message>
    <message>
        <source>an error was written to the log</source>
        <translation>ein Fehler steht im Protokoll</translation>
    </message>
    <message>
        <source>it could not be installed</source>
        <translation>er konnte nicht eingesetzt werden</translation>
    </message>
    <message>
        <source>the service did not tell its length, so that it was not fetched</source>
        <translation>der Dienst nannte seine Länge nicht, darum wurde er nicht geladen</translation>
    </message>
    <message>
        <source>the service did not tell its version, so that it was not fetched</source>
        <translation>der Dienst nannte seine Fassung nicht, darum wurde er nicht geladen</translation>
    </message>
    <message>
        <source>less than a kilobyte has changed in all, which is not fetched</source>
        <translation>insgesamt hat sich weniger als ein Kilobyte geändert, das wird nicht geladen</translation>
    </message>
    <message>
        <source>it was not fetched, because an installation before it failed</source>
        <translation>er wurde nicht geladen, weil ein Einsetzen vor ihm fehlschlug</translation>
    </message>
    <message>
        <source>its newer version was not fetched: %1</source>
        <translation>seine neuere Fassung wurde nicht geladen: %1</translation>
    </message>
    <message>
        <source>the hash file still lists %1</source>
        <translation>die Liste der Kennungen nennt noch %1</translation>
    </message>
    <message>
        <source>no catalog is in the archive</source>
        <translation>im Archiv ist kein Katalog</translation>
    </message>
    <message>
        <source>the new file %1</source>
        <translation>die neue Datei %1</translation>
    </message>
    <message>
        <source>the download failed</source>
        <translation>das Laden schlug fehl</translation>
    </message>
    <message>
        <source>is no database</source>
        <translation>ist keine Datenbank</translation>
    </message>
    <message>
        <source>is a damaged database: it is cut off</source>
        <translation>ist eine beschädigte Datenbank: das Ende fehlt</translation>
    </message>
    <message>
        <source>is a damaged database: %1</source>
        <translation>ist eine beschädigte Datenbank: %1</translation>
    </message>
    <message>
        <source>cannot be read: %1</source>
        <translation>kann nicht gelesen werden: %1</translation>
    </message>
    <message>
        <source>another update is running on this root: %1 is locked</source>
        <translation>hier läuft schon eine andere Aktualisierung: %1 ist gesperrt</translation>
    </message>
    <message>
        <source>another import is running on this root: %1 is locked</source>
        <translation>hier läuft schon ein anderer Import: %1 ist gesperrt</translation>
    </message>
    <message>
        <source>cannot lock %1: another program is changing the settings</source>
        <translation>%1 kann nicht gesperrt werden: ein anderes Programm ändert gerade die Einstellungen</translation>
    </message>
    <message>
        <source>cannot lock %1: another program is changing the filters</source>
        <translation>%1 kann nicht gesperrt werden: ein anderes Programm ändert gerade die Filter</translation>
    </message>
    <message>
        <source>cannot lock %1: another program is changing the manufacturers</source>
        <translation>%1 kann nicht gesperrt werden: ein anderes Programm ändert gerade die Hersteller</translation>
    </message>
    <message>
        <source>cannot lock %1: another program is changing the %2</source>
        <translation>%1 kann nicht gesperrt werden: ein anderes Programm ändert gerade „%2“</translation>
    </message>
    <message>
        <source>cannot lock %1: %2</source>
        <translation>%1 kann nicht gesperrt werden: %2</translation>
    </message>
    <message>
        <source>cannot keep the unreadable filter file as %1</source>
        <translation>die unlesbare Filterdatei kann nicht als %1 aufgehoben werden</translation>
    </message>
    <message>
        <source>cannot keep the former file as %1</source>
        <translation>die bisherige Datei kann nicht als %1 aufgehoben werden</translation>
    </message>
    <message>
        <source>cannot keep %1 as %2: %3</source>
        <translation>%1 kann nicht als %2 aufgehoben werden: %3</translation>
    </message>
    <message>
        <source>cannot create the folder %1</source>
        <translation>der Ordner %1 kann nicht angelegt werden</translation>
    </message>
    <message>
        <source>cannot create %1</source>
        <translation>%1 kann nicht angelegt werden</translation>
    </message>
    <message>
        <source>cannot read what came from %1</source>
        <translation>was von %1 kam, ist nicht lesbar</translation>
    </message>
    <message>
        <source>cannot read %1: %2</source>
        <translation>%1 kann nicht gelesen werden: %2</translation>
    </message>
    <message>
        <source>cannot read %1</source>
        <translation>%1 kann nicht gelesen werden</translation>
    </message>
    <message>
        <source>cannot write the hash file in %1</source>
        <translation>die Liste der Kennungen in %1 kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>cannot write %1: it was read-only; the next refresh may write it</source>
        <translation>%1 kann nicht geschrieben werden: die Datei war schreibgeschützt, das nächste Mal kann es gehen</translation>
    </message>
    <message>
        <source>cannot write %1: %2</source>
        <translation>%1 kann nicht geschrieben werden: %2</translation>
    </message>
    <message>
        <source>cannot write %1</source>
        <translation>%1 kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>cannot replace %1</source>
        <translation>%1 kann nicht ersetzt werden</translation>
    </message>
    <message>
        <source>cannot move %1 to %2: %3</source>
        <translation>%1 kann nicht nach %2 verschoben werden: %3</translation>
    </message>
    <message>
        <source>cannot move %1 to %2</source>
        <translation>%1 kann nicht nach %2 verschoben werden</translation>
    </message>
    <message>
        <source>cannot fetch %1: %2</source>
        <translation>%1 kann nicht geladen werden: %2</translation>
    </message>
    <message>
        <source>cannot understand %1: repair or remove it, which releases all catalogs</source>
        <translation>%1 ist unverständlich: berichtigen oder entfernen Sie die Datei, dann wird kein Katalog mehr festgehalten</translation>
    </message>
    <message>
        <source>cannot understand %1</source>
        <translation>%1 ist unverständlich</translation>
    </message>
    <message>
        <source>%1 answers no manufacturer file</source>
        <translation>%1 antwortet ohne Herstellerdatei</translation>
    </message>
    <message>
        <source>no filter has the id %1: %2</source>
        <translation>kein Filter hat die Nummer %1: %2</translation>
    </message>
    <message>
        <source>another filter has the id %1</source>
        <translation>ein anderer Filter hat die Nummer %1</translation>
    </message>
    <message>
        <source>another filter has the name %1; its id is %2</source>
        <translation>ein anderer Filter heißt %1; seine Nummer ist %2</translation>
    </message>
    <message>
        <source>%1: names no library</source>
        <translation>%1: benennt keine Bibliothek</translation>
    </message>
    <message>
        <source>%1: no such file</source>
        <translation>%1: diese Datei gibt es nicht</translation>
    </message>
    <message>
        <source>%1: no such archive</source>
        <translation>%1: dieses Archiv gibt es nicht</translation>
    </message>
    <message>
        <source>%1: is a folder</source>
        <translation>%1: ist ein Ordner</translation>
    </message>
    <message>
        <source>%1: cannot be written</source>
        <translation>%1: kann nicht geschrieben werden</translation>
    </message>
    <message>
        <source>%1: cannot be removed</source>
        <translation>%1: kann nicht entfernt werden</translation>
    </message>
    <message>
        <source>%1: cannot be put back</source>
        <translation>%1: kann nicht zurückgelegt werden</translation>
    </message>
    <message>
        <source>%1: cannot be kept for a later undo</source>
        <translation>%1: kann nicht für ein späteres Zurücknehmen aufgehoben werden</translation>
    </message>
    <message>
        <source>%1: the damaged archive cannot be kept there</source>
        <translation>%1: das beschädigte Archiv kann dort nicht aufgehoben werden</translation>
    </message>
    <message>
        <source>%1: holds neither a library nor referenced files</source>
        <translation>%1: enthält weder eine Bibliothek noch zugehörige Dateien</translation>
    </message>
    <message>
        <source>%1: the library in it %2</source>
        <translation>%1: die Bibliothek darin %2</translation>
    </message>
    <message>
        <source>%1: is no record of imports</source>
        <translation>%1: ist kein Verzeichnis von Importen</translation>
    </message>
    <message>
        <source>%1: another program is changing it</source>
        <translation>%1: ein anderes Programm ändert die Datei gerade</translation>
    </message>
    <message>
        <source>%1: was changed after the import, and the change would be lost; to undo all the same, move the file away first</source>
        <translation>%1: wurde nach dem Import geändert, und die Änderung ginge verloren; um ihn trotzdem zurückzunehmen, legen Sie die Datei vorher beiseite</translation>
    </message>
    <message>
        <source>%1: not enough memory</source>
        <translation>%1: zu wenig Speicher</translation>
    </message>
    <message>
        <source>there is no import to take back</source>
        <translation>es gibt keinen Import, der sich zurücknehmen lässt</translation>
    </message>
    <message>
        <source>cancelled</source>
        <translation>abgebrochen</translation>
    </message>
    <message>
        <source>%1 has no former versions</source>
        <translation>%1 hat keine früheren Fassungen</translation>
    </message>
    <message>
        <source>%1 has no former version &apos;%2&apos;</source>
        <translation>%1 hat keine frühere Fassung „%2“</translation>
    </message>
    <message>
        <source>no catalog is called &apos;%1&apos;</source>
        <translation>kein Katalog heißt „%1“</translation>
    </message>
    <message>
        <source>&apos;%1&apos; can be %2</source>
        <translation>„%1“ kann %2 sein</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no setting</source>
        <translation>„%1“ ist keine Einstellung</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no http or https address</source>
        <translation>„%1“ ist keine Adresse mit http oder https</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is no proxy, such as http://proxy.example:3128</source>
        <translation>„%1“ ist kein Proxy wie http://proxy.example:3128</translation>
    </message>
    <message>
        <source>&apos;%1&apos; is not a file name that ends in .orvlib</source>
        <translation>„%1“ ist kein Dateiname, der auf .orvlib endet</translation>
    </message>
    <message>
        <source>%1 must be a number from %2 to %3</source>
        <translation>%1 muss eine Zahl von %2 bis %3 sein</translation>
    </message>
    <message>
        <source>%1 must be a number from %2 on</source>
        <translation>%1 muss eine Zahl ab %2 sein</translation>
    </message>
    <message>
        <source>%1 must be one line of UTF-8 text</source>
        <translation>%1 muss eine Zeile Text in UTF-8 sein</translation>
    </message>
    <message>
        <source>%1 must be a list of texts</source>
        <translation>%1 muss eine Liste von Texten sein</translation>
    </message>
    <message>
        <source>%1 must be a text</source>
        <translation>%1 muss ein Text sein</translation>
    </message>
    <message>
        <source>%1 must be one object</source>
        <translation>%1 muss ein einziges Objekt sein</translation>
    </message>
    <message>
        <source>%1 must not be empty</source>
        <translation>%1 darf nicht leer sein</translation>
    </message>
    <message>
        <source>%1 needs a value</source>
        <translation>%1 braucht einen Wert</translation>
    </message>
    <message>
        <source>%1 takes one value</source>
        <translation>%1 nimmt einen Wert</translation>
    </message>
    <message>
        <source>disk full: %1 needed, %2 free, %3 kept free</source>
        <translation>Datenträger voll: %1 nötig, %2 frei, %3 werden frei gehalten</translation>
    </message>
    <message>
        <source>write error: %1</source>
        <translation>Schreibfehler: %1</translation>
    </message>
    <message>
        <source>read error: %1</source>
        <translation>Lesefehler: %1</translation>
    </message>
    <message>
        <source>the partial file is in use</source>
        <translation>die angefangene Datei ist in Gebrauch</translation>
    </message>
    <message>
        <source>Failed to connect to %1 port %2 after %3 ms: %4</source>
        <translation>Keine Verbindung zu %1, Port %2, nach %3 ms: %4</translation>
    </message>
    <message>
        <source>Failed to connect to %1 port %2: %3</source>
        <translation>Keine Verbindung zu %1, Port %2: %3</translation>
    </message>
    <message>
        <source>Couldn&apos;t connect to server</source>
        <translation>der Rechner nimmt keine Verbindung an</translation>
    </message>
    <message>
        <source>Connection refused</source>
        <translation>Verbindung abgelehnt</translation>
    </message>
    <message>
        <source>Could not resolve host: %1</source>
        <translation>den Rechner %1 gibt es nicht</translation>
    </message>
    <message>
        <source>Could not resolve proxy: %1</source>
        <translation>den Proxy %1 gibt es nicht</translation>
    </message>
    <message>
        <source>Empty reply from server</source>
        <translation>leere Antwort</translation>
    </message>
    <message>
        <source>Operation timed out after %1</source>
        <translation>zu lange gewartet: %1</translation>
    </message>
    <message>
        <source>Operation too slow. %1</source>
        <translation>zu langsam: %1</translation>
    </message>
    <message>
        <source>Recv failure: %1</source>
        <translation>Empfang abgebrochen: %1</translation>
    </message>
    <message>
        <source>Send failure: %1</source>
        <translation>Senden abgebrochen: %1</translation>
    </message>
    <message>
        <source>Connection reset by peer</source>
        <translation>die Gegenseite hat die Verbindung abgebrochen</translation>
    </message>
    <message>
        <source>SSL certificate problem: %1</source>
        <translation>das Zertifikat des Dienstes gilt nicht: %1</translation>
    </message>
    <message>
        <source>no answer from %1 a moment ago: %2</source>
        <translation>eben noch keine Antwort von %1: %2</translation>
    </message>
    <message>
        <source>%1: line %2, column %3: %4</source>
        <translation>%1: Zeile %2, Spalte %3: %4</translation>
    </message>
    <message>
        <source>must be one object</source>
        <translation>muss ein einziges Objekt sein</translation>
    </message>
    <message>
        <source>transfer closed with %1 bytes remaining to read</source>
        <translation>die Verbindung endete, als noch %1 Bytes fehlten</translation>
    </message>
    <message>
        <source>Permission denied</source>
        <translation>keine Berechtigung</translation>
    </message>
    <message>
        <source>No such file or directory</source>
        <translation>Datei oder Ordner fehlt</translation>
    </message>
    <message>
        <source>No space left on device</source>
        <translation>kein Platz mehr auf dem Datenträger</translation>
    </message>
    <message>
        <source>Is a directory</source>
        <translation>ist ein Ordner</translation>
    </message>
    <message>
        <source>Not a directory</source>
        <translation>ist kein Ordner</translation>
    </message>
    <message>
        <source>Read-only file system</source>
        <translation>nur lesbarer Datenträger</translation>
    </message>
    <message>
        <source>Input/output error</source>
        <translation>Fehler beim Lesen oder Schreiben des Datenträgers</translation>
    </message>
    <message>
        <source>Resolving timed out after %1 milliseconds</source>
        <translation>der Name wurde in %1 Millisekunden nicht aufgelöst</translation>
    </message>
    <message>
        <source>Connection timed out after %1 milliseconds</source>
        <translation>keine Verbindung in %1 Millisekunden</translation>
    </message>
    <message>
        <source>Connection timeout after %1 ms</source>
        <translation>keine Verbindung in %1 ms</translation>
    </message>
    <message>
        <source>Operation timed out after %1 milliseconds with %2 out of %3 bytes received</source>
        <translation>nach %1 Millisekunden abgebrochen; %2 von %3 Bytes waren da</translation>
    </message>
    <message>
        <source>Operation timed out after %1 milliseconds with %2 bytes received</source>
        <translation>nach %1 Millisekunden abgebrochen; %2 Bytes waren da</translation>
    </message>
    <message>
        <source>Operation too slow. Less than %1 bytes/sec transferred the last %2 seconds</source>
        <translation>zu langsam: weniger als %1 Bytes je Sekunde in den letzten %2 Sekunden</translation>
    </message>
    <message>
        <source>Timeout was reached</source>
        <translation>Zeit abgelaufen</translation>
    </message>
    <message>
        <source>Couldn&apos;t resolve host name</source>
        <translation>der Name des Servers ist nicht bekannt</translation>
    </message>
    <message>
        <source>Couldn&apos;t resolve proxy name</source>
        <translation>der Name des Proxys ist nicht bekannt</translation>
    </message>
    <message>
        <source>Could not connect to server</source>
        <translation>keine Verbindung zum Server</translation>
    </message>
    <message>
        <source>Server returned nothing (no headers, no data)</source>
        <translation>der Server hat nichts geantwortet</translation>
    </message>
    <message>
        <source>Failed sending data to the peer</source>
        <translation>es konnte nichts gesendet werden</translation>
    </message>
    <message>
        <source>Failure when receiving data from the peer</source>
        <translation>es konnte nichts empfangen werden</translation>
    </message>
    <message>
        <source>Transferred a partial file</source>
        <translation>nur ein Teil wurde übertragen</translation>
    </message>
    <message>
        <source>transfer closed with outstanding read data remaining</source>
        <translation>die Verbindung endete, bevor alles da war</translation>
    </message>
    <message>
        <source>end of response with %1 bytes missing</source>
        <translation>die Antwort endete %1 Bytes zu früh</translation>
    </message>
    <message>
        <source>HTTP/2 stream %1 was not closed cleanly: %2 (err %3)</source>
        <translation>die Übertragung %1 brach ab: %2 (Fehler %3)</translation>
    </message>
    <message>
        <source>HTTP/2 stream %1 was not closed cleanly before end of the underlying stream</source>
        <translation>die Übertragung %1 brach mit der Verbindung ab</translation>
    </message>
    <message>
        <source>Error in the HTTP2 framing layer</source>
        <translation>Fehler in der HTTP/2-Verbindung</translation>
    </message>
    <message>
        <source>Received HTTP/0.9 when not allowed</source>
        <translation>die Antwort ist kein HTTP</translation>
    </message>
    <message>
        <source>Unsupported HTTP version in response</source>
        <translation>die Antwort hat eine unbekannte HTTP-Version</translation>
    </message>
    <message>
        <source>Error while processing content unencoding: %1</source>
        <translation>die Antwort lässt sich nicht entpacken: %1</translation>
    </message>
    <message>
        <source>Unrecognized or bad HTTP Content or Transfer-Encoding</source>
        <translation>die Antwort ist unbekannt oder falsch verpackt</translation>
    </message>
    <message>
        <source>Maximum (%1) redirects followed</source>
        <translation>mehr als %1 Weiterleitungen</translation>
    </message>
    <message>
        <source>Number of redirects hit maximum amount</source>
        <translation>zu viele Weiterleitungen</translation>
    </message>
    <message>
        <source>Protocol &quot;%1&quot; not supported or disabled in libcurl</source>
        <translation>das Protokoll „%1“ wird nicht unterstützt</translation>
    </message>
    <message>
        <source>Unsupported protocol</source>
        <translation>das Protokoll wird nicht unterstützt</translation>
    </message>
    <message>
        <source>URL using bad/illegal format or missing URL</source>
        <translation>die Adresse ist keine oder fehlt</translation>
    </message>
    <message>
        <source>Received HTTP code %1 from proxy after CONNECT</source>
        <translation>der Proxy antwortet mit HTTP %1</translation>
    </message>
    <message>
        <source>CONNECT tunnel failed, response %1</source>
        <translation>der Proxy antwortet mit HTTP %1</translation>
    </message>
    <message>
        <source>Proxy CONNECT aborted</source>
        <translation>der Proxy hat abgebrochen</translation>
    </message>
    <message>
        <source>Proxy CONNECT aborted due to timeout</source>
        <translation>der Proxy hat nicht rechtzeitig geantwortet</translation>
    </message>
    <message>
        <source>SSL: no alternative certificate subject name matches target host name &apos;%1&apos;</source>
        <translation>das Zertifikat gilt nicht für %1</translation>
    </message>
    <message>
        <source>SSL: certificate subject name &apos;%1&apos; does not match target host name &apos;%2&apos;</source>
        <translation>das Zertifikat gilt für %1 und nicht für %2</translation>
    </message>
    <message>
        <source>SSL peer certificate or SSH remote key was not OK</source>
        <translation>das Zertifikat des Servers ist nicht in Ordnung</translation>
    </message>
    <message>
        <source>unable to get local issuer certificate</source>
        <translation>sein Aussteller ist hier nicht bekannt</translation>
    </message>
    <message>
        <source>unable to verify the first certificate</source>
        <translation>sein Aussteller ist hier nicht bekannt</translation>
    </message>
    <message>
        <source>self-signed certificate in certificate chain</source>
        <translation>es wurde von niemandem bestätigt, der hier bekannt ist</translation>
    </message>
    <message>
        <source>self signed certificate in certificate chain</source>
        <translation>es wurde von niemandem bestätigt, der hier bekannt ist</translation>
    </message>
    <message>
        <source>self-signed certificate</source>
        <translation>es wurde von niemandem bestätigt</translation>
    </message>
    <message>
        <source>self signed certificate</source>
        <translation>es wurde von niemandem bestätigt</translation>
    </message>
    <message>
        <source>certificate has expired</source>
        <translation>es ist abgelaufen</translation>
    </message>
    <message>
        <source>certificate is not yet valid</source>
        <translation>es gilt noch nicht</translation>
    </message>
    <message>
        <source>certificate revoked</source>
        <translation>es wurde widerrufen</translation>
    </message>
    <message>
        <source>SSL connect error</source>
        <translation>keine sichere Verbindung</translation>
    </message>
    <message>
        <source>OpenSSL SSL_connect: %1 in connection to %2</source>
        <translation>keine sichere Verbindung zu %2: %1</translation>
    </message>
    <message>
        <source>OpenSSL SSL_read: %1</source>
        <translation>die sichere Verbindung brach ab: %1</translation>
    </message>
    <message>
        <source>error setting certificate file: %1</source>
        <translation>die Zertifikate in %1 können nicht gelesen werden</translation>
    </message>
    <message>
        <source>error setting certificate verify locations: CAfile: %1 CApath: %2</source>
        <translation>die Zertifikate in %1 und %2 können nicht gelesen werden</translation>
    </message>
    <message>
        <source>Problem with the SSL CA cert (path? access rights?)</source>
        <translation>die Zertifikate können nicht gelesen werden</translation>
    </message>
    <message>
        <source>Out of memory</source>
        <translation>der Speicher ist voll</translation>
    </message>
    <message>
        <source>Connection timed out</source>
        <translation>keine Antwort in der Zeit</translation>
    </message>
    <message>
        <source>Network is unreachable</source>
        <translation>das Netz ist nicht erreichbar</translation>
    </message>
    <message>
        <source>No route to host</source>
        <translation>kein Weg zum Server</translation>
    </message>
    <message>
        <source>Broken pipe</source>
        <translation>die Gegenseite hat die Verbindung beendet</translation>
    </message>
    <message>
        <source>Operation not permitted</source>
        <translation>nicht erlaubt</translation>
    </message>
    <message>
        <source>Too many open files</source>
        <translation>zu viele offene Dateien</translation>
    </message>
    <message>
        <source>Cannot allocate memory</source>
        <translation>der Speicher ist voll</translation>
    </message>
    <message>
        <source>Device or resource busy</source>
        <translation>gerade in Gebrauch</translation>
    </message>
    <message>
        <source>Disk quota exceeded</source>
        <translation>der zugeteilte Platz ist voll</translation>
    </message>
    <message>
        <source>File name too long</source>
        <translation>der Dateiname ist zu lang</translation>
    </message>
    <message>
        <source>Stale file handle</source>
        <translation>die Datei ist auf dem Server nicht mehr da</translation>
    </message>
</context>
<context>
    <name>ResultCard</name>
    <message>
        <source>&amp;Retry</source>
        <translation>&amp;Wiederholen</translation>
    </message>
    <message>
        <source>&amp;Fetch all the same</source>
        <translation>&amp;Trotzdem holen</translation>
    </message>
    <message>
        <source>Show what’s &amp;new</source>
        <translation>&amp;Neues zeigen</translation>
    </message>
    <message>
        <source>&amp;Log</source>
        <translation>&amp;Protokoll</translation>
    </message>
    <message>
        <source>Put the result away</source>
        <translation>Ergebnis schließen</translation>
    </message>
</context>
<context>
    <name>SearchBar</name>
    <message>
        <source>Style</source>
        <translation>Stil</translation>
    </message>
    <message>
        <source>Manufacturer</source>
        <translation>Hersteller</translation>
    </message>
    <message>
        <source>Catalog</source>
        <translation>Katalog</translation>
    </message>
    <message>
        <source>Search the library</source>
        <translation>Bibliothek durchsuchen</translation>
    </message>
    <message>
        <source>Favourites</source>
        <translation>Favoriten</translation>
    </message>
    <message>
        <source>Favourites (%1)</source>
        <translation>Favoriten (%1)</translation>
    </message>
    <message>
        <source>the words “%1”</source>
        <translation>die Wörter „%1“</translation>
    </message>
    <message>
        <source>only favourites</source>
        <translation>nur Favoriten</translation>
    </message>
    <message>
        <source>the filter “%1”</source>
        <translation>der Filter „%1“</translation>
    </message>
    <message>
        <source>New</source>
        <translation>Neu</translation>
    </message>
    <message>
        <source>Items that updates brought since you last looked</source>
        <translation>Objekte, die Aktualisierungen gebracht haben, seit Sie zuletzt hingesehen haben</translation>
    </message>
    <message>
        <source>New (%1)</source>
        <translation>Neu (%1)</translation>
    </message>
    <message>
        <source>only what is new</source>
        <translation>nur Neues</translation>
    </message>
</context>
<context>
    <name>SeenCommand</name>
    <message>
        <source>Mark all as seen</source>
        <translation>Alles als gesehen vermerken</translation>
    </message>
</context>
<context>
    <name>SettingFields</name>
    <message>
        <source>“%1” is no proxy, such as http://proxy.example:3128.</source>
        <translation>„%1“ ist kein Proxy wie http://proxy.example:3128.</translation>
    </message>
    <message>
        <source>“%1” is no name of a catalog.</source>
        <translation>„%1“ ist kein Name eines Katalogs.</translation>
    </message>
</context>
<context>
    <name>SeveralDetails</name>
    <message>
        <source>Make them favourites</source>
        <translation>Zu Favoriten machen</translation>
    </message>
    <message>
        <source>Remove from favourites</source>
        <translation>Aus den Favoriten entfernen</translation>
    </message>
    <message numerus="yes">
        <source>%Ln item(s) selected</source>
        <translation>
            <numerusform>%Ln Objekt ausgewählt</numerusform>
            <numerusform>%Ln Objekte ausgewählt</numerusform>
        </translation>
    </message>
    <message>
        <source>Copy to</source>
        <translation>Kopieren nach</translation>
    </message>
</context>
<context>
    <name>SharedSettings</name>
    <message>
        <source>The settings cannot be read: %1</source>
        <translation>Die Einstellungen sind nicht lesbar: %1</translation>
    </message>
    <message>
        <source>The certificates cannot be read: %1</source>
        <translation>Die Zertifikate sind nicht lesbar: %1</translation>
    </message>
</context>
<context>
    <name>ShortcutSheet</name>
    <message>
        <source>Keys</source>
        <translation>Tasten</translation>
    </message>
    <message>
        <source>What it does</source>
        <translation>Wirkung</translation>
    </message>
    <message>
        <source>Key</source>
        <translation>Taste</translation>
    </message>
    <message>
        <source>Show the item large</source>
        <translation>Objekt groß zeigen</translation>
    </message>
    <message>
        <source>Larger or smaller pictures</source>
        <translation>Größere oder kleinere Bilder</translation>
    </message>
    <message>
        <source>Ctrl and the wheel</source>
        <translation>Strg und das Mausrad</translation>
    </message>
    <message>
        <source>From the search to the items</source>
        <translation>Von der Suche zu den Objekten</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Pfeil nach unten</translation>
    </message>
    <message>
        <source>Forget the search</source>
        <translation>Suche zurücksetzen</translation>
    </message>
    <message>
        <source>Escape</source>
        <translation>Escape</translation>
    </message>
</context>
<context>
    <name>SimilarView</name>
    <message>
        <source>Similar items</source>
        <translation>Ähnliche Objekte</translation>
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
    <name>TransferSpeed</name>
    <message>
        <source>waiting for the service</source>
        <translation>der Dienst lässt warten</translation>
    </message>
    <message numerus="yes">
        <source>%1/s, about %n minute(s) left</source>
        <translation>
            <numerusform>%1/s, noch etwa %n Minute</numerusform>
            <numerusform>%1/s, noch etwa %n Minuten</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1/s, about %n second(s) left</source>
        <translation>
            <numerusform>%1/s, noch etwa %n Sekunde</numerusform>
            <numerusform>%1/s, noch etwa %n Sekunden</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>UndoCare</name>
    <message>
        <source>There is nothing to undo.</source>
        <translation>Es gibt nichts rückgängig zu machen.</translation>
    </message>
</context>
<context>
    <name>UpdateActivities</name>
    <message>
        <source>installing</source>
        <translation>wird eingerichtet</translation>
    </message>
</context>
<context>
    <name>UpdateController</name>
    <message>
        <source>The update failed: %1</source>
        <translation>Die Aktualisierung ist fehlgeschlagen: %1</translation>
    </message>
</context>
<context>
    <name>UpdateSummary</name>
    <message numerus="yes">
        <source>%1 and %n more</source>
        <translation>
            <numerusform>%1 und %n weiterer</numerusform>
            <numerusform>%1 und %n weitere</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The connection is metered, so %Ln update(s) wait: %1.</source>
        <translation>
            <numerusform>Die Verbindung ist getaktet, daher wartet %Ln Aktualisierung: %1.</numerusform>
            <numerusform>Die Verbindung ist getaktet, daher warten %Ln Aktualisierungen: %1.</numerusform>
        </translation>
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
    <message numerus="yes">
        <source>%Ln catalog(s)</source>
        <translation>
            <numerusform>%Ln Katalog</numerusform>
            <numerusform>%Ln Kataloge</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln new item(s)</source>
        <translation>
            <numerusform>%Ln neues Objekt</numerusform>
            <numerusform>%Ln neue Objekte</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln changed</source>
        <translation>
            <numerusform>%Ln geändert</numerusform>
            <numerusform>%Ln geändert</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln gone</source>
        <translation>
            <numerusform>%Ln entfallen</numerusform>
            <numerusform>%Ln entfallen</numerusform>
        </translation>
    </message>
    <message>
        <source>, </source>
        <translation>, </translation>
    </message>
    <message>
        <source>The catalog service cannot be reached; the library stays as it is.</source>
        <translation>Der Katalogdienst ist nicht erreichbar; die Bibliothek bleibt, wie sie ist.</translation>
    </message>
    <message>
        <source>Some catalogs could not be updated: %1</source>
        <translation>Einige Kataloge konnten nicht aktualisiert werden: %1</translation>
    </message>
    <message>
        <source>Some catalogs could not be checked.</source>
        <translation>Einige Kataloge konnten nicht geprüft werden.</translation>
    </message>
    <message numerus="yes">
        <source>%Ln item(s)</source>
        <translation>
            <numerusform>%Ln Objekt</numerusform>
            <numerusform>%Ln Objekte</numerusform>
        </translation>
    </message>
    <message>
        <source>the content index</source>
        <translation>das Inhaltsverzeichnis</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>und %n weiterer</numerusform>
            <numerusform>und %n weitere</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>WindowMenus</name>
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
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederholen</translation>
    </message>
    <message>
        <source>&amp;Favourite</source>
        <translation>&amp;Favorit</translation>
    </message>
    <message>
        <source>Show in f&amp;older</source>
        <translation>Im &amp;Ordner zeigen</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Search</source>
        <translation>&amp;Suchen</translation>
    </message>
    <message>
        <source>&amp;Pictures</source>
        <translation>&amp;Bilder</translation>
    </message>
    <message>
        <source>&amp;List</source>
        <translation>&amp;Liste</translation>
    </message>
    <message>
        <source>&amp;Details</source>
        <translation>&amp;Angaben</translation>
    </message>
    <message>
        <source>&amp;Library</source>
        <translation>Bi&amp;bliothek</translation>
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
        <source>Edit &amp;filters…</source>
        <translation>&amp;Filter bearbeiten …</translation>
    </message>
    <message>
        <source>Show the &amp;log</source>
        <translation>&amp;Protokoll zeigen</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Keys…</source>
        <translation>&amp;Tasten …</translation>
    </message>
    <message>
        <source>Mark all as &amp;seen</source>
        <translation>Alles als &amp;gesehen vermerken</translation>
    </message>
    <message>
        <source>&amp;Activities</source>
        <translation>&amp;Vorgänge</translation>
    </message>
    <message>
        <source>&amp;Copy to</source>
        <translation>&amp;Kopieren nach</translation>
    </message>
    <message>
        <source>Re&amp;name…</source>
        <translation>&amp;Umbenennen…</translation>
    </message>
    <message>
        <source>De&amp;lete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>&amp;New library…</source>
        <translation>&amp;Neue Bibliothek…</translation>
    </message>
</context>
</TS>
