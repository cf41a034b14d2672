<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US">
<context>
    <name>FirstStart</name>
    <message numerus="yes">
        <source>%Ln catalog(s)</source>
        <translation>
            <numerusform>%Ln catalog</numerusform>
            <numerusform>%Ln catalogs</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>GalleryBar</name>
    <message numerus="yes">
        <source>%Ln item(s)</source>
        <translation>
            <numerusform>%Ln item</numerusform>
            <numerusform>%Ln items</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>ImportSummary</name>
    <message numerus="yes">
        <source>%n of %1 archive(s) imported.</source>
        <translation>
            <numerusform>%n of %1 archives was imported.</numerusform>
            <numerusform>%n of %1 archives were imported.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n more not imported; the log has the reasons.</source>
        <translation>
            <numerusform>%n more was not imported; the log has the reasons.</numerusform>
            <numerusform>%n more were not imported; the log has the reasons.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>MakerCard</name>
    <message numerus="yes">
        <source>Show all %Ln</source>
        <translation>
            <numerusform>Show all %Ln</numerusform>
            <numerusform>Show all %Ln</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>ManufacturerPreview</name>
    <message numerus="yes">
        <source>%n logo(s) could not be fetched.</source>
        <translation>
            <numerusform>%n logo could not be fetched.</numerusform>
            <numerusform>%n logos could not be fetched.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>NothingFoundPage</name>
    <message numerus="yes">
        <source>%Ln item(s) elsewhere</source>
        <translation>
            <numerusform>%Ln item elsewhere</numerusform>
            <numerusform>%Ln items elsewhere</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>OwnLibraries</name>
    <message numerus="yes">
        <source>Delete %Ln item(s)</source>
        <translation>
            <numerusform>Delete %Ln item</numerusform>
            <numerusform>Delete %Ln items</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln item(s) deleted. Undo brings them back.</source>
        <translation>
            <numerusform>%Ln item deleted. Undo brings it back.</numerusform>
            <numerusform>%Ln items deleted. Undo brings them back.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln item(s) are back.</source>
        <translation>
            <numerusform>%Ln item is back.</numerusform>
            <numerusform>%Ln items are back.</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>PlacesModel</name>
    <message numerus="yes">
        <source>%Ln item(s) new or changed</source>
        <translation>
            <numerusform>%Ln item new or changed</numerusform>
            <numerusform>%Ln items new or changed</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>SeveralDetails</name>
    <message numerus="yes">
        <source>%Ln item(s) selected</source>
        <translation>
            <numerusform>%Ln item selected</numerusform>
            <numerusform>%Ln items selected</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>TransferSpeed</name>
    <message numerus="yes">
        <source>%1/s, about %n minute(s) left</source>
        <translation>
            <numerusform>%1/s, about %n minute left</numerusform>
            <numerusform>%1/s, about %n minutes left</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1/s, about %n second(s) left</source>
        <translation>
            <numerusform>%1/s, about %n second left</numerusform>
            <numerusform>%1/s, about %n seconds left</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>UpdateSummary</name>
    <message numerus="yes">
        <source>%1 and %n more</source>
        <translation>
            <numerusform>%1 and %n more</numerusform>
            <numerusform>%1 and %n more</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The connection is metered, so %Ln update(s) wait: %1.</source>
        <translation>
            <numerusform>The connection is metered, so %Ln update waits: %1.</numerusform>
            <numerusform>The connection is metered, so %Ln updates wait: %1.</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln catalog(s)</source>
        <translation>
            <numerusform>%Ln catalog</numerusform>
            <numerusform>%Ln catalogs</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln new item(s)</source>
        <translation>
            <numerusform>%Ln new item</numerusform>
            <numerusform>%Ln new items</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln changed</source>
        <translation>
            <numerusform>%Ln changed</numerusform>
            <numerusform>%Ln changed</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln gone</source>
        <translation>
            <numerusform>%Ln gone</numerusform>
            <numerusform>%Ln gone</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln item(s)</source>
        <translation>
            <numerusform>%Ln item</numerusform>
            <numerusform>%Ln items</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>and %n more</numerusform>
            <numerusform>and %n more</numerusform>
        </translation>
    </message>
</context>
</TS>
