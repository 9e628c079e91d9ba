<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU" sourcelanguage="en_US">
<context>
    <name>ZorvaneClient::GUI::Player::VideoWidget</name>
    <message>
        <source>Connecting</source>
        <translation>Подключение</translation>
    </message>
    <message>
        <source>Interrupted</source>
        <translation>Связь прервана</translation>
    </message>
    <message>
        <source>Live</source>
        <translation>Эфир</translation>
    </message>
    <message>
        <source>No picture</source>
        <translation>Нет изображения</translation>
    </message>
    <message>
        <source>Paused</source>
        <translation>Пауза</translation>
    </message>
    <message>
        <source>Records</source>
        <translation>Записи</translation>
    </message>
</context>
</TS>
