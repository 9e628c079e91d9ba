<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU" sourcelanguage="en_US">
<context>
    <name>CameraSettingsDialog</name>
    <message>
        <source>Rotate left</source>
        <translation>Повернуть влево</translation>
    </message>
    <message>
        <source>Rotate right</source>
        <translation>Повернуть вправо</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::Player::VideoWidget</name>
    <message>
        <source>Used by another copy of the program</source>
        <translation>Занято другой копией программы</translation>
    </message>
</context>
</TS>
