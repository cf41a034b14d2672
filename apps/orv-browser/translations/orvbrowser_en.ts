<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US">
<context>
    <name>SearchPane</name>
    <message numerus="yes">
        <source>%n item(s) found</source>
        <translation>
            <numerusform>%n item found</numerusform>
            <numerusform>%n items found</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>The first %n item(s) found</source>
        <translation>
            <numerusform>The first item found</numerusform>
            <numerusform>The first %n items found</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%n catalog(s) cannot be read</source>
        <translation>
            <numerusform>%n catalog cannot be read</numerusform>
            <numerusform>%n catalogs cannot be read</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>UpdateController</name>
    <message numerus="yes">
        <source>%1 and %n more</source>
        <translation>
            <numerusform>%1 and %n more</numerusform>
            <numerusform>%1 and %n more</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1/s, about %n second(s) left</source>
        <translation>
            <numerusform>%1/s, about %n second left</numerusform>
            <numerusform>%1/s, about %n seconds left</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1/s, about %n minute(s) left</source>
        <translation>
            <numerusform>%1/s, about %n minute left</numerusform>
            <numerusform>%1/s, about %n minutes left</numerusform>
        </translation>
    </message>
</context>
</TS>
