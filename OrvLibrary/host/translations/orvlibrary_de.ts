<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en">
<context>
    <name></name>
    <message id="orv-2749">
        <source>%1%%%</source>
        <translation>%1% %%</translation>
    </message>
    <message id="orv-2750">
        <source>%1% of %2%</source>
        <translation>%1% von %2%</translation>
    </message>
    <message id="orv-2752">
        <source>Progress is shown as a count. Click to show only the caption.</source>
        <translation>Der Fortschritt wird als Anzahl gezeigt. Klicken Sie, um nur die Überschrift zu zeigen.</translation>
    </message>
    <message id="orv-2753">
        <source>Only the caption is shown. Click to show progress as a percentage.</source>
        <translation>Nur die Überschrift wird gezeigt. Klicken Sie, um den Fortschritt in Prozent zu zeigen.</translation>
    </message>
    <message id="orv-2754">
        <source>Progress is shown as a percentage. Click to show a count.</source>
        <translation>Der Fortschritt wird in Prozent gezeigt. Klicken Sie, um eine Anzahl zu zeigen.</translation>
    </message>
    <message id="orv-2893">
        <source>Unpacking %1%</source>
        <translation>%1% wird entpackt</translation>
    </message>
    <message id="orv-8709">
        <source>Downloading </source>
        <translation>Herunterladen: </translation>
    </message>
    <message id="orv-8717">
        <source>Looking for library catalogs</source>
        <translation>Bibliothekskataloge werden gesucht</translation>
    </message>
    <message id="orv-8723">
        <source>Found </source>
        <translation>Gefunden: </translation>
    </message>
    <message id="orv-8727">
        <source>Checking for updates: </source>
        <translation>Suche nach Aktualisierungen: </translation>
    </message>
    <message id="orv-8745">
        <source>KB</source>
        <translation>kB</translation>
    </message>
    <message id="orv-8930">
        <source>No Filter</source>
        <translation>Kein Filter</translation>
    </message>
    <message id="orv-10000">
        <source>Traditional</source>
        <translation>Traditionell</translation>
    </message>
    <message id="orv-10001">
        <source>Contemporary</source>
        <translation>Zeitgenössisch</translation>
    </message>
    <message id="orv-10002">
        <source>Modern</source>
        <translation>Modern</translation>
    </message>
    <message id="orv-10003">
        <source>Transitional</source>
        <translation>Klassisch-modern</translation>
    </message>
    <message id="orv-10004">
        <source>Farmhouse</source>
        <translation>Bauernhaus</translation>
    </message>
    <message id="orv-10005">
        <source>Craftsman</source>
        <translation>Handwerkerstil</translation>
    </message>
    <message id="orv-10006">
        <source>Colonial</source>
        <translation>Kolonialstil</translation>
    </message>
    <message id="orv-10007">
        <source>Victorian</source>
        <translation>Viktorianisch</translation>
    </message>
    <message id="orv-10008">
        <source>Mediterranean</source>
        <translation>Mediterran</translation>
    </message>
    <message id="orv-10009">
        <source>Tuscan</source>
        <translation>Toskanisch</translation>
    </message>
    <message id="orv-10010">
        <source>French Country</source>
        <translation>Französischer Landhausstil</translation>
    </message>
    <message id="orv-10011">
        <source>Mid-Century</source>
        <translation>Jahrhundertmitte</translation>
    </message>
    <message id="orv-10012">
        <source>Scandinavian</source>
        <translation>Skandinavisch</translation>
    </message>
    <message id="orv-10013">
        <source>Industrial</source>
        <translation>Industriestil</translation>
    </message>
    <message id="orv-10014">
        <source>Rustic</source>
        <translation>Rustikal</translation>
    </message>
    <message id="orv-10108">
        <source>Please contact the manufacturer for details.</source>
        <translation>Bitte wenden Sie sich für Einzelheiten an den Hersteller.</translation>
    </message>
    <message id="orv-272032175">
        <source>%1%</source>
        <translation>%1%</translation>
    </message>
    <message id="orv-272032338">
        <source>This library contains material that a manufacturer supplied. Colors and textures on the screen may differ from the real product; ask the manufacturer before you order.</source>
        <translation>Diese Bibliothek enthält Material eines Herstellers. Farben und Texturen auf dem Bildschirm können vom wirklichen Produkt abweichen; fragen Sie den Hersteller, bevor Sie bestellen.</translation>
    </message>
    <message id="orv-272032391">
        <source>The file "%1%" cannot be written. It may be read-only or in use by another program.</source>
        <translation>Die Datei „%1%“ kann nicht geschrieben werden. Sie ist vielleicht schreibgeschützt oder wird von einem anderen Programm benutzt.</translation>
    </message>
    <message id=".downloads.">
        <source>.downloads.</source>
        <translation>.downloads.</translation>
    </message>
    <message id="LibraryProgressPanel">
        <source>LibraryProgressPanel</source>
        <translation>LibraryProgressPanel</translation>
    </message>
</context>
</TS>
