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
    <name>ZorvaneClient::GUI::ControlPanel</name>
    <message>
        <source>Go to a moment</source>
        <translation>Перейти к моменту</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::DayAccess</name>
    <message>
        <source>Has records</source>
        <translation>Есть записи</translation>
    </message>
    <message>
        <source>No records</source>
        <translation>Нет записей</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::EntryAccess</name>
    <message>
        <source>Camera</source>
        <translation>Камера</translation>
    </message>
    <message>
        <source>Camera, open</source>
        <translation>Камера, открыта</translation>
    </message>
    <message>
        <source>Layout</source>
        <translation>Раскладка</translation>
    </message>
    <message>
        <source>Layout, open</source>
        <translation>Раскладка, открыта</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::GridSizeEditor</name>
    <message>
        <source>Grid size: %1</source>
        <translation>Размер сетки: %1</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::KeyCard</name>
    <message>
        <source>A minute back and on in the archive</source>
        <translation>Архив: на минуту назад и вперёд</translation>
    </message>
    <message>
        <source>Archive faster and slower</source>
        <translation>Архив: быстрее и медленнее</translation>
    </message>
    <message>
        <source>Back: all cameras, then out of fullscreen</source>
        <translation>Назад: все камеры, затем выход из полного экрана</translation>
    </message>
    <message>
        <source>Fullscreen and back</source>
        <translation>Полный экран и обратно</translation>
    </message>
    <message>
        <source>Keys</source>
        <translation>Клавиши</translation>
    </message>
    <message>
        <source>Live</source>
        <translation>Прямой эфир</translation>
    </message>
    <message>
        <source>Make a neighbouring camera active</source>
        <translation>Выбрать соседнюю камеру</translation>
    </message>
    <message>
        <source>Names on the pictures</source>
        <translation>Названия камер на изображениях</translation>
    </message>
    <message>
        <source>One camera alone, and all again</source>
        <translation>Одна камера вместо сетки и обратно</translation>
    </message>
    <message>
        <source>Pause and play</source>
        <translation>Пауза и воспроизведение</translation>
    </message>
    <message>
        <source>Previous and next layout</source>
        <translation>Предыдущая и следующая раскладка</translation>
    </message>
    <message>
        <source>Saved layouts in turn</source>
        <translation>Обход сохранённых раскладок</translation>
    </message>
    <message>
        <source>Saved layouts, in the order of their list</source>
        <translation>Сохранённые раскладки по порядку списка</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Поиск</translation>
    </message>
    <message>
        <source>Show and hide the records</source>
        <translation>Показать и скрыть записи</translation>
    </message>
    <message>
        <source>Snapshot of the active camera</source>
        <translation>Сохранить кадр выбранной камеры</translation>
    </message>
    <message>
        <source>Sound on and off</source>
        <translation>Включить и выключить звук</translation>
    </message>
    <message>
        <source>Ten seconds back and on in the archive</source>
        <translation>Архив: на десять секунд назад и вперёд</translation>
    </message>
    <message>
        <source>This card</source>
        <translation>Эта подсказка</translation>
    </message>
    <message>
        <source>Whole pictures again</source>
        <translation>Снова изображения целиком</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::MainWindow</name>
    <message>
        <source>Saved layouts in turn, every %1 s.</source>
        <translation>Обход раскладок: каждые %1 с.</translation>
    </message>
    <message>
        <source>The tour is over.</source>
        <translation>Обход раскладок закончен.</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::MomentField</name>
    <message>
        <source>Date and time</source>
        <translation>Дата и время</translation>
    </message>
    <message>
        <source>dd/MM/yyyy</source>
        <translation>dd.MM.yyyy</translation>
    </message>
</context>
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
    <message>
        <source>Used by another copy of the program</source>
        <translation>Занято другой копией программы</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::ScreenSaverHold</name>
    <message>
        <source>Video is playing</source>
        <translation>Идёт воспроизведение видео</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::ServiceSign</name>
    <message>
        <source>No connection to the service</source>
        <translation>Нет связи с сервисом</translation>
    </message>
    <message>
        <source>The service has not answered since %1. Cameras and layouts are asked for again and again, at least once a minute.</source>
        <translation>Сервис не отвечает с %1. Камеры и раскладки запрашиваются снова и снова, не реже раза в минуту.</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::SideBar</name>
    <message>
        <source>Clear the search</source>
        <translation>Очистить поиск</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::StripAccess</name>
    <message>
        <source>%1, shown from %2 to %3</source>
        <translation>%1, показано с %2 до %3</translation>
    </message>
    <message>
        <source>Time of the records</source>
        <translation>Время записей</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::TourButton</name>
    <message>
        <source>Every 10 seconds</source>
        <translation>Каждые 10 секунд</translation>
    </message>
    <message>
        <source>Every 30 seconds</source>
        <translation>Каждые 30 секунд</translation>
    </message>
    <message>
        <source>Every 5 minutes</source>
        <translation>Каждые 5 минут</translation>
    </message>
    <message>
        <source>Every minute</source>
        <translation>Каждую минуту</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Выключен</translation>
    </message>
    <message>
        <source>Saved layouts in turn</source>
        <translation>Показывать сохранённые раскладки по очереди</translation>
    </message>
    <message>
        <source>Tour</source>
        <translation>Обход</translation>
    </message>
</context>
</TS>
