<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU" sourcelanguage="en_US">
<context>
    <name>Generic</name>
    <message>
        <source>Common</source>
        <translation>Общие</translation>
    </message>
    <message>
        <source>AutoRun</source>
        <translation>Запускать вместе с системой</translation>
    </message>
    <message>
        <source>RecordsPath</source>
        <translation>Папка записей</translation>
    </message>
    <message>
        <source>HideWindowOnStart</source>
        <translation>Скрывать окно при запуске</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Язык</translation>
    </message>
</context>
<context>
    <name>PropertyEditor</name>
    <message>
        <source>on</source>
        <translation>включено</translation>
    </message>
    <message>
        <source>off</source>
        <translation>выключено</translation>
    </message>
    <message>
        <source>empty</source>
        <translation>пусто</translation>
    </message>
</context>
<context>
    <name>PropertyListControl</name>
    <message>
        <source>Reset to default: %1</source>
        <translation>Вернуть значение по умолчанию: %1</translation>
    </message>
</context>
</TS>
