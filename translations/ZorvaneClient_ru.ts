<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU" sourcelanguage="en_US">
<context>
    <name>ArchiveControlPanel</name>
    <message>
        <source>Export completed. Open path</source>
        <translation>Экспорт завершен. Открыть папку</translation>
    </message>
    <message>
        <source>Export error</source>
        <translation>Ошибка экспорта</translation>
    </message>
    <message>
        <source>Exporting...</source>
        <translation>Выполняется экспорт...</translation>
    </message>
    <message>
        <source>Form</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>MMM dd</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Select fragment to export</source>
        <translation>Выберите участок для экспорта</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Увеличить масштаб</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Уменьшить масштаб</translation>
    </message>
</context>
<context>
    <name>CameraSettingsDialog</name>
    <message>
        <source>Camera settings</source>
        <translation>Настройки камеры</translation>
    </message>
    <message>
        <source>Enabled</source>
        <translation>Включен</translation>
    </message>
    <message>
        <source>Mirror image</source>
        <translation>Зеркальное отражение</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Название</translation>
    </message>
    <message>
        <source>Rotation</source>
        <translation>Поворот</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>Звук</translation>
    </message>
</context>
<context>
    <name>ControlPanel</name>
    <message>
        <source>0%</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>10/08</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>10:27:35</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>1x</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Acceleration</source>
        <translation>Ускорение</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Choose interval</source>
        <translation>Выбрать интервал</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Экспорт</translation>
    </message>
    <message>
        <source>Fullscreen</source>
        <translation>Полный экран</translation>
    </message>
    <message>
        <source>Hide records</source>
        <translation>Скрыть записи</translation>
    </message>
    <message>
        <source>Live</source>
        <translation>Эфир</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Пауза</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Воспроизвести</translation>
    </message>
    <message>
        <source>Quality</source>
        <translation>Качество</translation>
    </message>
    <message>
        <source>Records</source>
        <translation>Записи</translation>
    </message>
    <message>
        <source>Show records</source>
        <translation>Показать записи</translation>
    </message>
    <message>
        <source>Sound on/off</source>
        <translation>Включить или выключить звук</translation>
    </message>
    <message>
        <source>Start live playing</source>
        <translation>Смотреть прямой эфир</translation>
    </message>
</context>
<context>
    <name>InfoPanel</name>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Close view</source>
        <translation>Закрыть просмотр</translation>
    </message>
    <message>
        <source>Edit grid</source>
        <translation>Изменить сетку</translation>
    </message>
    <message>
        <source>Edit view</source>
        <translation>Изменить раскладку</translation>
    </message>
    <message>
        <source>Form</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Layout name</source>
        <translation>Название раскладки</translation>
    </message>
    <message>
        <source>Layout or Camera name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Open new window</source>
        <translation>Открыть новое окно</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Сохранить</translation>
    </message>
    <message>
        <source>Show toolbars</source>
        <translation>Показать панели</translation>
    </message>
</context>
<context>
    <name>LayoutListWidget</name>
    <message>
        <source>Add new layout</source>
        <translation>Добавить раскладку</translation>
    </message>
    <message>
        <source>Form</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>LocalServerDialog</name>
    <message>
        <source>127.0.0.1</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>8080</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Name:</source>
        <translation>Название:</translation>
    </message>
    <message>
        <source>Password:</source>
        <translation>Пароль:</translation>
    </message>
    <message>
        <source>Port:</source>
        <translation>Порт:</translation>
    </message>
    <message>
        <source>Show password</source>
        <translation>Показать пароль</translation>
    </message>
    <message>
        <source>Videoserver is in my local network</source>
        <translation>Видеосервер находится в локальной сети</translation>
    </message>
    <message>
        <source>Videoserver is installed on this computer</source>
        <translation>Видеосервер установлен на этом компьютере</translation>
    </message>
    <message>
        <source>Videoserver location</source>
        <translation>Расположение видеосервера</translation>
    </message>
    <message>
        <source>Videoserver&apos;s IP address:</source>
        <translation>IP-адрес видеосервера:</translation>
    </message>
</context>
<context>
    <name>Login</name>
    <message>
        <source>Account Settings</source>
        <translation>Настройки учетной записи</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Default settings</source>
        <translation>Настройки по умолчанию</translation>
    </message>
    <message>
        <source>Don&apos;t remember my account</source>
        <translation>Не запоминать учетную запись</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Готово</translation>
    </message>
    <message>
        <source>Email</source>
        <translation>Электронная почта</translation>
    </message>
    <message>
        <source>Host</source>
        <translation>Адрес</translation>
    </message>
    <message>
        <source>Local mode</source>
        <translation>Локальный режим</translation>
    </message>
    <message>
        <source>Login</source>
        <translation>Логин</translation>
    </message>
    <message>
        <source>No internet connection</source>
        <translation>Нет доступа в интернет</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Пароль</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Порт</translation>
    </message>
    <message>
        <source>Proxy server detected</source>
        <translation>Обнаружен прокси-сервер</translation>
    </message>
    <message>
        <source>Proxy setup</source>
        <translation>Настроить прокси</translation>
    </message>
    <message>
        <source>Remind Password</source>
        <translation>Напомнить пароль</translation>
    </message>
    <message>
        <source>Sign In</source>
        <translation>Войти</translation>
    </message>
    <message>
        <source>Sign Up</source>
        <translation>Регистрация</translation>
    </message>
    <message>
        <source>Use local mode</source>
        <translation>Локальный режим</translation>
    </message>
    <message>
        <source>Using proxy server</source>
        <translation>Через прокси-сервер</translation>
    </message>
    <message>
        <source>Wrong email or password</source>
        <translation>Неправильный email или пароль</translation>
    </message>
</context>
<context>
    <name>Preview</name>
    <message>
        <source>Camera</source>
        <translation>Камера</translation>
    </message>
    <message>
        <source>Form</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>%1 service error: requested user does not exist</source>
        <translation>Ошибка сервиса %1: такого пользователя нет</translation>
    </message>
    <message>
        <source>Zorvane</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Search for cameras...</source>
        <translation>Искать камеры...</translation>
    </message>
    <message>
        <source>Search for layouts...</source>
        <translation>Искать раскладки...</translation>
    </message>
    <message>
        <source>Unknown error</source>
        <translation>Неизвестная ошибка</translation>
    </message>
    <message>
        <source>Video Service</source>
        <translation>Видеосервис</translation>
    </message>
</context>
<context>
    <name>ServerWidget</name>
    <message>
        <source>Form</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Server offline</source>
        <translation>Сервер не подключен</translation>
    </message>
    <message>
        <source>ServerName</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SettingsWidget</name>
    <message>
        <source>&lt;App Version&gt;</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Account</source>
        <translation>Учетная запись</translation>
    </message>
    <message>
        <source>Add local server</source>
        <translation>Добавить локальный сервер</translation>
    </message>
    <message>
        <source>Check for updates...</source>
        <translation>Проверка обновлений...</translation>
    </message>
    <message>
        <source>Download</source>
        <translation>Загрузить</translation>
    </message>
    <message>
        <source>English</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Form</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Язык</translation>
    </message>
    <message>
        <source>New version is available.</source>
        <translation>Доступна новая версия.</translation>
    </message>
    <message>
        <source>Restart Now</source>
        <translation>Перезапустить сейчас</translation>
    </message>
    <message>
        <source>Restart required for changes to take effect</source>
        <translation>Перезапустите приложение для применения настроек</translation>
    </message>
    <message>
        <source>Sign out</source>
        <translation>Выйти</translation>
    </message>
    <message>
        <source>Update server is not available. Try again</source>
        <translation>Сервер обновлений недоступен. Попробуйте еще раз</translation>
    </message>
    <message>
        <source>Version:</source>
        <translation>Версия:</translation>
    </message>
    <message>
        <source>You are using the latest version.</source>
        <translation>Установлена последняя версия.</translation>
    </message>
    <message>
        <source>email</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Русский</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>SideBar</name>
    <message>
        <source>Form</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Hide toolbars</source>
        <translation>Скрыть панели</translation>
    </message>
    <message>
        <source>Search for cameras...</source>
        <translation>Искать камеры...</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Настройки</translation>
    </message>
</context>
<context>
    <name>ToolBar</name>
    <message>
        <source>Cameras</source>
        <translation>Камеры</translation>
    </message>
    <message>
        <source>Form</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Layouts</source>
        <translation>Раскладки</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Настройки</translation>
    </message>
</context>
<context>
    <name>VideoPlaceholder</name>
    <message>
        <source>Drop a camera here</source>
        <translation>Перетащите камеру в ячейку</translation>
    </message>
    <message>
        <source>Form</source>
        <translation type="unfinished"></translation>
    </message>
</context>
<context>
    <name>VideoWidget</name>
    <message>
        <source>00:00:00</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Camera name</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Закрыть</translation>
    </message>
    <message>
        <source>Close camera</source>
        <translation>Закрыть камеру</translation>
    </message>
    <message>
        <source>Form</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Options</source>
        <translation>Параметры</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Настройки</translation>
    </message>
    <message>
        <source>Snapshot</source>
        <translation>Сохранить кадр</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::API::Camera</name>
    <message>
        <source> and </source>
        <translation> и </translation>
    </message>
    <message>
        <source> is </source>
        <translation> </translation>
    </message>
    <message>
        <source>Camera </source>
        <translation>Камера </translation>
    </message>
    <message>
        <source>not paid for</source>
        <translation>не оплачена</translation>
    </message>
    <message>
        <source>offline</source>
        <translation>не подключена</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::API::Layout</name>
    <message>
        <source>Untitled Layout</source>
        <translation>Новая Раскладка</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::ArchiveControlPanel</name>
    <message>
        <source>Export completed. </source>
        <translation>Экспорт завершен. </translation>
    </message>
    <message>
        <source>Open path</source>
        <translation>Открыть папку</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::CameraWidget</name>
    <message>
        <source>Add to layout</source>
        <translation>Добавить в раскладку</translation>
    </message>
    <message>
        <source>Open camera</source>
        <translation>Открыть камеру</translation>
    </message>
    <message>
        <source>Open in a new window</source>
        <translation>Открыть в новом окне</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Настройки</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::ControlPanel</name>
    <message>
        <source>Auto</source>
        <translation>Авто</translation>
    </message>
    <message>
        <source>High</source>
        <translation>Высокое</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>Низкое</translation>
    </message>
    <message>
        <source>Middle</source>
        <translation>Среднее</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::LayoutCard</name>
    <message>
        <source>Delete</source>
        <translation>Удалить</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Открыть</translation>
    </message>
    <message>
        <source>Open in new window</source>
        <translation>Открыть в новом окне</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::LayoutWidget</name>
    <message>
        <source>Error while exporting.</source>
        <translation>Ошибка при экспорте.</translation>
    </message>
    <message>
        <source>Open folder</source>
        <translation>Открыть папку</translation>
    </message>
    <message>
        <source>Record saved.</source>
        <translation>Экспорт завершен.</translation>
    </message>
    <message>
        <source>Snapshot saved.</source>
        <translation>Кадр сохранен.</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::LocalServerDialog</name>
    <message>
        <source>Add a local videoserver</source>
        <translation>Добавить локальный видеосервер</translation>
    </message>
    <message>
        <source>Edit a local videoserver</source>
        <translation>Изменить локальный видеосервер</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::LoginDialog</name>
    <message>
        <source>Change your account settings</source>
        <translation>Изменить настройки учетной записи</translation>
    </message>
    <message>
        <source>Sign in using your Zorvane Cloud account.</source>
        <translation>Вход с учетной записью Zorvane Cloud.</translation>
    </message>
    <message>
        <source>Use with Zorvane Cloud account in case internet is accessible only via proxy in your network.</source>
        <translation>Для учетной записи Zorvane Cloud, если в вашей сети выйти в интернет можно только через прокси-сервер.</translation>
    </message>
    <message>
        <source>Watch video feeds from Zorvane Servers over LAN without using an Zorvane account. Doesn&apos;t require internet connection.</source>
        <translation>Просмотр видео с серверов Zorvane по локальной сети без учетной записи Zorvane. Подключение к интернету не требуется.</translation>
    </message>
    <message>
        <source>/?target=password-recover&amp;lang=en</source>
        <translation>/?target=password-recover&amp;lang=ru</translation>
    </message>
    <message>
        <source>/?target=sign_up&amp;lang=en</source>
        <translation>/?target=sign_up&amp;lang=ru</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::MainWindow</name>
    <message>
        <source>Archive is not shared</source>
        <translation>Нет доступа к архиву</translation>
    </message>
    <message>
        <source>Do you want to save your changes?</source>
        <translation>Сохранить изменения?</translation>
    </message>
    <message>
        <source>The layout has been modified.</source>
        <translation>Раскладка была изменена.</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::Player::VideoWidget</name>
    <message>
        <source>Archive is not shared</source>
        <translation>Нет доступа к архиву</translation>
    </message>
    <message>
        <source>Live is not shared</source>
        <translation>Видео недоступно</translation>
    </message>
    <message>
        <source>No records</source>
        <translation>Нет записей</translation>
    </message>
    <message>
        <source>No video available</source>
        <translation>Видео недоступно</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::ServerWidget</name>
    <message>
        <source>Delete</source>
        <translation>Удалить</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Изменить</translation>
    </message>
    <message>
        <source>No cameras attached</source>
        <translation>Нет подключенных камер</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::SettingsWidget</name>
    <message>
        <source>%1 %2 version is available. Would you like to download it now?</source>
        <translation>Доступна версия %1 %2. Желаете загрузить её сейчас?</translation>
    </message>
    <message>
        <source>A new version of %1 is available!</source>
        <translation>Доступна новая версия %1!</translation>
    </message>
    <message>
        <source>Are you sure you want to log out?</source>
        <translation>Вы действительно хотите выйти?</translation>
    </message>
</context>
<context>
    <name>ZorvaneClient::GUI::Timeline</name>
    <message>
        <source>Archive is not shared</source>
        <translation>Нет доступа к архиву</translation>
    </message>
    <message>
        <source>Cannot load records</source>
        <translation>Не удалось загрузить записи</translation>
    </message>
    <message>
        <source>Loading records...</source>
        <translation>Загрузка записей...</translation>
    </message>
    <message>
        <source>No records</source>
        <translation>Нет записей</translation>
    </message>
</context>
</TS>
