<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="en_US">
<context>
    <name>Generic</name>
    <message>
        <source>Common</source>
        <translation>Common</translation>
    </message>
    <message>
        <source>AutoRun</source>
        <translation>Start with the system</translation>
    </message>
    <message>
        <source>RecordsPath</source>
        <translation>Records folder</translation>
    </message>
    <message>
        <source>HideWindowOnStart</source>
        <translation>Hide the window at start</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Language</translation>
    </message>
</context>
<context>
    <name>PropertyEditor</name>
    <message>
        <source>on</source>
        <translation>on</translation>
    </message>
    <message>
        <source>off</source>
        <translation>off</translation>
    </message>
    <message>
        <source>empty</source>
        <translation>empty</translation>
    </message>
</context>
<context>
    <name>PropertyListControl</name>
    <message>
        <source>Reset to default: %1</source>
        <translation>Reset to default: %1</translation>
    </message>
</context>
</TS>
