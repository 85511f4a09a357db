<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU" sourcelanguage="en_US">
<context>
    <name>AccessButton</name>
    <message>
        <source>Other computers can reach Ocela</source>
        <translation>Ocela доступна другим компьютерам</translation>
    </message>
    <message>
        <source>Only this computer can reach Ocela</source>
        <translation>Ocela доступна только этому компьютеру</translation>
    </message>
    <message>
        <source>%1. Click to change it in the settings.</source>
        <translation>%1. Нажмите, чтобы изменить это в настройках.</translation>
    </message>
</context>
<context>
    <name>AccessTab</name>
    <message>
        <source>These entries are not web origins and are ignored: %1. Write each origin without a path, for example https://lab.example or http://192.0.2.20:8080.</source>
        <translation>Это не адреса сайтов, они не учитываются: %1. Пишите каждый адрес без пути, например https://lab.example или http://192.0.2.20:8080.</translation>
    </message>
</context>
<context>
    <name>CalibrationWidget</name>
    <message>
        <source>Нажмите ESC для выхода</source>
        <translation>Нажмите ESC для выхода</translation>
    </message>
    <message>
        <source>Нажмите Пробел для начала калибровки</source>
        <translation>Нажмите Пробел для начала калибровки</translation>
    </message>
    <message>
        <source>Calibration</source>
        <translation>Калибровка</translation>
    </message>
    <message>
        <source>Move until the orange circle (your eyes) is in the grey box</source>
        <translation>Сядьте так, чтобы оранжевый круг (глаза) был в сером квадрате</translation>
    </message>
    <message>
        <source>Point %1 of %2</source>
        <translation>Точка %1 из %2</translation>
    </message>
</context>
<context>
    <name>Dashboard</name>
    <message>
        <source>The browser cannot be opened. Open this page:</source>
        <translation>Не удалось открыть браузер. Откройте эту страницу:</translation>
    </message>
</context>
<context>
    <name>EyetechCalibrationWidget</name>
    <message>
        <source>Save</source>
        <translation>Сохранить</translation>
    </message>
    <message>
        <source>Recalibrate</source>
        <translation>Повторить</translation>
    </message>
    <message>
        <source>Calibration</source>
        <translation>Калибровка</translation>
    </message>
    <message>
        <source>Press Escape or click to close this screen.</source>
        <translation>Нажмите Escape или щёлкните мышью, чтобы закрыть этот экран.</translation>
    </message>
    <message>
        <source>The calibration has failed: the tracker refused to start it.</source>
        <translation>Калибровка не удалась: трекер отказался её начать.</translation>
    </message>
    <message>
        <source>The calibration has failed: the tracker did not return its targets.</source>
        <translation>Калибровка не удалась: трекер не передал точки калибровки.</translation>
    </message>
    <message>
        <source>The calibration has failed: the tracker was lost. Check its cable and calibrate again.</source>
        <translation>Калибровка не удалась: связь с трекером потеряна. Проверьте кабель и повторите калибровку.</translation>
    </message>
    <message>
        <source>The calibration has failed: the tracker refused its result.</source>
        <translation>Калибровка не удалась: трекер не принял её результат.</translation>
    </message>
    <message>
        <source>The tracker does not accept this target and tries again. Look at its centre, or press Escape to cancel.</source>
        <translation>Трекер не принимает эту точку и пробует снова. Смотрите в её центр или нажмите Escape для отмены.</translation>
    </message>
    <message>
        <source>L: left eye, R: right eye</source>
        <translation>L: левый глаз, R: правый глаз</translation>
    </message>
    <message>
        <source>A smaller score is better, below 10 is good</source>
        <translation>Чем меньше оценка, тем лучше; меньше 10 — хорошо</translation>
    </message>
</context>
<context>
    <name>EyetechDeviceQuestion</name>
    <message>
        <source>%1, serial number %2</source>
        <translation>%1, серийный номер %2</translation>
    </message>
    <message>
        <source>Choose an EyeTech tracker</source>
        <translation>Выбор трекера EyeTech</translation>
    </message>
    <message>
        <source>Several EyeTech trackers are attached. Which one do you want to use?</source>
        <translation>Подключено несколько трекеров EyeTech. Какой из них использовать?</translation>
    </message>
    <message>
        <source>Ocela remembers its serial number. You can change the number in the settings.</source>
        <translation>Ocela запомнит его серийный номер. Номер можно изменить в настройках.</translation>
    </message>
    <message>
        <source>Use</source>
        <translation>Использовать</translation>
    </message>
    <message>
        <source>Not now</source>
        <translation>Не сейчас</translation>
    </message>
</context>
<context>
    <name>EyetechGrabber</name>
    <message>
        <source>no device found</source>
        <translation>устройство не найдено</translation>
    </message>
    <message>
        <source>device not available</source>
        <translation>устройство недоступно</translation>
    </message>
    <message>
        <source>several devices attached, none chosen</source>
        <translation>подключено несколько устройств, ни одно не выбрано</translation>
    </message>
</context>
<context>
    <name>EyetechVideoDisplayWidget</name>
    <message>
        <source>The colour of the markers rates your distance: green is good, red is too near or too far. Click to see the pupils under the markers.</source>
        <translation>Цвет меток оценивает расстояние: зелёный — хорошо, красный — слишком близко или далеко. Щёлкните, чтобы увидеть зрачки под метками.</translation>
    </message>
</context>
<context>
    <name>EyetrackerConnectedWidget</name>
    <message>
        <source>No tracker</source>
        <translation>Нет трекера</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>Подключено</translation>
    </message>
    <message>
        <source>Disconnected</source>
        <translation>Не подключено</translation>
    </message>
</context>
<context>
    <name>EyetrackerInterface</name>
    <message>
        <source>library %1 not found</source>
        <translation>библиотека %1 не найдена</translation>
    </message>
    <message>
        <source>library %1 cannot be loaded, see Ocela.log</source>
        <translation>библиотека %1 не загружается, см. Ocela.log</translation>
    </message>
</context>
<context>
    <name>EyetrackerSampleViewer</name>
    <message>
        <source>Left eye</source>
        <translation>Левый глаз</translation>
    </message>
    <message>
        <source>Right eye</source>
        <translation>Правый глаз</translation>
    </message>
    <message>
        <source>Common</source>
        <translation>Общее</translation>
    </message>
    <message>
        <source>Valid</source>
        <translation>Достоверность</translation>
    </message>
    <message>
        <source>Eyes</source>
        <translation>Глаза</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Положение</translation>
    </message>
    <message>
        <source>Focus</source>
        <translation>Фокус</translation>
    </message>
    <message>
        <source>Distance</source>
        <translation>Расстояние</translation>
    </message>
    <message>
        <source>Pupil</source>
        <translation>Зрачок</translation>
    </message>
    <message>
        <source>cm</source>
        <translation>см</translation>
    </message>
    <message>
        <source>mm</source>
        <translation>мм</translation>
    </message>
    <message>
        <source>0: the eye was detected. -: the eye was not detected.</source>
        <translation>0: глаз найден. -: глаз не найден.</translation>
    </message>
    <message>
        <source>0.0 if the tracker does not measure this value.</source>
        <translation>0.0, если трекер не измеряет эту величину.</translation>
    </message>
    <message>
        <source>No sample yet</source>
        <translation>Данных ещё не было</translation>
    </message>
    <message>
        <source>Not live since %1</source>
        <translation>Данные не обновляются с %1</translation>
    </message>
</context>
<context>
    <name>GazePoint</name>
    <message>
        <source>server not running at %1</source>
        <translation>сервер не запущен на %1</translation>
    </message>
    <message>
        <source>no connection to %1: %2</source>
        <translation>нет соединения с %1: %2</translation>
    </message>
</context>
<context>
    <name>GazeTrailView</name>
    <message>
        <source>No gaze</source>
        <translation>Взгляд не найден</translation>
    </message>
</context>
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
        <source>DescribeRecordings</source>
        <translation>Добавлять описание к записям</translation>
    </message>
    <message>
        <source>HideWindowOnStart</source>
        <translation>Скрывать окно при запуске</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Язык</translation>
    </message>
    <message>
        <source>Ocela уже запущена</source>
        <translation>Ocela уже запущена</translation>
    </message>
    <message>
        <source>Calibration_5_points</source>
        <translation>5 точек</translation>
    </message>
    <message>
        <source>Calibration_9_points</source>
        <translation>9 точек</translation>
    </message>
    <message>
        <source>Calibration_16_points</source>
        <translation>16 точек</translation>
    </message>
    <message>
        <source>Calibration</source>
        <translation>Калибровка</translation>
    </message>
    <message>
        <source>CalibrationTimeMs</source>
        <translation>Время на точку</translation>
    </message>
    <message>
        <source>ms</source>
        <translation>мс</translation>
    </message>
    <message>
        <source>CalibrationAnimationMs</source>
        <translation>Время движения</translation>
    </message>
    <message>
        <source>CalibrationDelayMs</source>
        <translation>Пауза перед точкой</translation>
    </message>
    <message>
        <source>DeviceSerialNumber</source>
        <translation>Серийный номер устройства</translation>
    </message>
    <message>
        <source>Several devices</source>
        <translation>Несколько устройств</translation>
    </message>
    <message>
        <source>AllowOtherComputers</source>
        <translation>Другие компьютеры могут использовать Ocela</translation>
    </message>
    <message>
        <source>Access</source>
        <translation>Доступ</translation>
    </message>
    <message>
        <source>AllowForeignPages</source>
        <translation>Страницы других сайтов могут использовать простой API</translation>
    </message>
    <message>
        <source>AllowedOrigins</source>
        <translation>Разрешённые сайты</translation>
    </message>
    <message>
        <source>ServeAnyFile</source>
        <translation>Отдавать любые файлы этого компьютера</translation>
    </message>
    <message>
        <source>Every computer that can connect to this one can read the gaze and control Ocela. There is no password. If this is off, only programs and web pages on this computer can use Ocela.</source>
        <translation>Любой компьютер, который может подключиться к этому, может читать данные взгляда и управлять Ocela. Пароля нет. Если выключено, использовать Ocela могут только программы и веб-страницы на этом компьютере.</translation>
    </message>
    <message>
        <source>Every web page that is open in a browser can read the gaze, control Ocela and fetch files. If this is off, only Ocela&apos;s own pages and pages of the allowed web origins can use Ocela.</source>
        <translation>Любая веб-страница, открытая в браузере, может читать данные взгляда, управлять Ocela и получать файлы. Если выключено, использовать Ocela могут только её собственные страницы и страницы разрешённых сайтов.</translation>
    </message>
    <message>
        <source>Web sites whose pages can always use Ocela and its API for programs, separated by spaces. For example: https://lab.example http://192.0.2.20:8080</source>
        <translation>Сайты, страницы которых всегда могут использовать Ocela и её API для программ. Адреса разделяются пробелами. Например: https://lab.example http://192.0.2.20:8080</translation>
    </message>
    <message>
        <source>Programs and web pages that use Ocela can read every file that you can read, and save recordings in every folder. If this is off, they can read only the files of Ocela&apos;s web pages and the recordings in the records folder, and save recordings only there.</source>
        <translation>Программы и веб-страницы, использующие Ocela, могут читать любые файлы, доступные вам, и сохранять записи в любой папке. Если выключено, им доступны только файлы веб-страниц Ocela и записи в папке записей, и сохранять записи они могут только в неё.</translation>
    </message>
    <message>
        <source>LslStreams</source>
        <translation>Потоки для Lab Streaming Layer (LSL)</translation>
    </message>
    <message>
        <source>LSL</source>
        <translation>LSL</translation>
    </message>
    <message>
        <source>Programs of the Lab Streaming Layer, for example LabRecorder, can receive the gaze of the selected tracker and the markers. There is no password: every computer in the local network can receive them.</source>
        <translation>Программы Lab Streaming Layer, например LabRecorder, могут получать взгляд с выбранного трекера и метки. Пароля нет: их может получать каждый компьютер в локальной сети.</translation>
    </message>
</context>
<context>
    <name>LslStreams</name>
    <message>
        <source>LSL streams could not be opened. Other programs may use all of their ports.</source>
        <translation>Не удалось открыть потоки LSL. Возможно, все их порты заняты другими программами.</translation>
    </message>
    <message>
        <source>LSL streams need the library liblsl, which cannot be used: %1. Get it from https://github.com/sccn/liblsl/releases and copy it beside the program. Then turn the setting off and on again.</source>
        <translation>Для потоков LSL нужна библиотека liblsl, но использовать её не удалось: %1. Загрузите её с https://github.com/sccn/liblsl/releases и скопируйте в папку программы. Затем выключите и снова включите эту настройку.</translation>
    </message>
    <message>
        <source>The LSL library does not respond, so the LSL streams send nothing. If this message stays, restart Ocela.</source>
        <translation>Библиотека LSL не отвечает, поэтому потоки LSL ничего не передают. Если это сообщение не исчезает, перезапустите Ocela.</translation>
    </message>
</context>
<context>
    <name>MainPage</name>
    <message>
        <source>Open dashboard</source>
        <translation>Открыть веб-панель</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>Main</source>
        <translation>Главная</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Настройки</translation>
    </message>
    <message>
        <source>Ocela</source>
        <translation>Ocela</translation>
    </message>
    <message>
        <source>Other programs cannot reach Ocela: %1</source>
        <translation>Ocela недоступна другим программам: %1</translation>
    </message>
    <message>
        <source>&quot;Start with the system&quot; could not be changed:</source>
        <translation>Не удалось изменить «Запускать вместе с системой»:</translation>
    </message>
</context>
<context>
    <name>OcelaHTTPExchange</name>
    <message>
        <source>Port %1 is used by another program</source>
        <translation>Порт %1 занят другой программой</translation>
    </message>
    <message>
        <source>Port %1 cannot be used: %2</source>
        <translation>Порт %1 нельзя использовать: %2</translation>
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
    <message>
        <source>Choose a folder</source>
        <translation>Выбрать папку</translation>
    </message>
</context>
<context>
    <name>PropertyListControl</name>
    <message>
        <source>Reset to default: %1</source>
        <translation>Вернуть значение по умолчанию: %1</translation>
    </message>
</context>
<context>
    <name>RecordingKeeper</name>
    <message>
        <source>A recording is running: %1</source>
        <translation>Идёт запись: %1</translation>
    </message>
    <message>
        <source>Stop it and save the record file before Ocela closes?</source>
        <translation>Остановить запись и сохранить файл перед закрытием Ocela?</translation>
    </message>
    <message>
        <source>Stop and save</source>
        <translation>Остановить и сохранить</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>Не сохранять</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>A recording could not be saved.</source>
        <translation>Не удалось сохранить запись.</translation>
    </message>
    <message>
        <source>Its samples stay in memory until Ocela closes.</source>
        <translation>Её данные остаются в памяти, пока работает Ocela.</translation>
    </message>
    <message>
        <source>Try again</source>
        <translation>Повторить</translation>
    </message>
    <message>
        <source>Choose a folder...</source>
        <translation>Выбрать папку...</translation>
    </message>
    <message>
        <source>Later</source>
        <translation>Позже</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>Сохранить как</translation>
    </message>
    <message>
        <source>Record files (*.csv)</source>
        <translation>Файлы записи (*.csv)</translation>
    </message>
</context>
<context>
    <name>RecordingStatusLine</name>
    <message>
        <source>Open folder</source>
        <translation>Открыть папку</translation>
    </message>
    <message>
        <source>Open in the viewer</source>
        <translation>Открыть в просмотре</translation>
    </message>
    <message>
        <source>Retry</source>
        <translation>Повторить</translation>
    </message>
    <message>
        <source>Save as</source>
        <translation>Сохранить как</translation>
    </message>
    <message>
        <source>discarded</source>
        <translation>запись удалена</translation>
    </message>
    <message>
        <source>The folder cannot be opened:</source>
        <translation>Не удалось открыть папку:</translation>
    </message>
</context>
<context>
    <name>SessionStrip</name>
    <message>
        <source>A file name cannot contain these characters: %1</source>
        <translation>Имя файла не может содержать эти символы: %1</translation>
    </message>
    <message>
        <source>The text has at most %1 characters.</source>
        <translation>Не более %1 символов.</translation>
    </message>
    <message>
        <source>Participant</source>
        <translation>Участник</translation>
    </message>
    <message>
        <source>Session</source>
        <translation>Сессия</translation>
    </message>
    <message>
        <source>Task</source>
        <translation>Задание</translation>
    </message>
    <message>
        <source>Optional. Added to the file name of recordings that you start with &quot;Start record&quot;.</source>
        <translation>Необязательно. Добавляется к имени файла записи, начатой кнопкой «Начать запись».</translation>
    </message>
</context>
<context>
    <name>SettingsNotice</name>
    <message>
        <source>The settings file %1 cannot be read: %2</source>
        <translation>Не удаётся прочитать файл настроек %1: %2</translation>
    </message>
    <message>
        <source>The defaults apply, and changes are not saved. Start Ocela again to use the file.</source>
        <translation>Действуют значения по умолчанию, изменения не сохраняются. Чтобы использовать файл, запустите Ocela снова.</translation>
    </message>
</context>
<context>
    <name>SettingsPage</name>
    <message>
        <source>Доступна новая версия</source>
        <translation>Доступна новая версия</translation>
    </message>
</context>
<context>
    <name>StatusTexts</name>
    <message>
        <source>Not connected</source>
        <translation>Не подключено</translation>
    </message>
    <message>
        <source>Not connected: %1</source>
        <translation>Не подключено: %1</translation>
    </message>
    <message>
        <source>Connected, but no samples for %1</source>
        <translation>Подключено, но данных нет уже %1</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 с</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>Подключено</translation>
    </message>
    <message>
        <source>Connected, %1 Hz, %2 % valid</source>
        <translation>Подключено, %1 Гц, достоверно %2 %</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>Запись</translation>
    </message>
    <message>
        <source>Recording (%1)</source>
        <translation>Запись (%1)</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>Сохранено: %1</translation>
    </message>
    <message>
        <source>Not saved: %1</source>
        <translation>Не сохранено: %1</translation>
    </message>
    <message numerus="yes">
        <source>%1 sample(s)</source>
        <translation>
            <numerusform>%1 отсчёт</numerusform>
            <numerusform>%1 отсчёта</numerusform>
            <numerusform>%1 отсчётов</numerusform>
        </translation>
    </message>
    <message>
        <source>connection lost</source>
        <translation>соединение потеряно</translation>
    </message>
    <message>
        <source>Calibration done</source>
        <translation>Калибровка выполнена</translation>
    </message>
    <message>
        <source>Calibration failed</source>
        <translation>Калибровка не удалась</translation>
    </message>
    <message>
        <source>Calibration cancelled</source>
        <translation>Калибровка отменена</translation>
    </message>
    <message>
        <source>Calibration result unknown</source>
        <translation>Результат калибровки неизвестен</translation>
    </message>
    <message>
        <source>Interrupted recording recovered: %1</source>
        <translation>Восстановлена прерванная запись: %1</translation>
    </message>
    <message numerus="yes">
        <source>%1 marker(s)</source>
        <translation>
            <numerusform>%1 метка</numerusform>
            <numerusform>%1 метки</numerusform>
            <numerusform>%1 меток</numerusform>
        </translation>
    </message>
    <message>
        <source>Marker %1 set</source>
        <translation>Метка %1 поставлена</translation>
    </message>
    <message>
        <source>Marker set; no recording is running</source>
        <translation>Метка поставлена; запись не идёт</translation>
    </message>
    <message>
        <source>Marker not stored: the recording has too many markers</source>
        <translation>Метка не сохранена: в записи слишком много меток</translation>
    </message>
</context>
<context>
    <name>TrackerStatusLine</name>
    <message>
        <source>Reconnect</source>
        <translation>Переподключить</translation>
    </message>
    <message>
        <source>Opens the tracker again. A running recording continues.</source>
        <translation>Открывает трекер заново. Запись продолжается.</translation>
    </message>
    <message>
        <source>Validate</source>
        <translation>Валидация</translation>
    </message>
    <message>
        <source>Opens a page in the browser that measures the accuracy of the calibration in degrees.</source>
        <translation>Открывает в браузере страницу, которая измеряет точность калибровки в угловых градусах.</translation>
    </message>
</context>
<context>
    <name>TrackerViewWidget</name>
    <message>
        <source>Calibrate</source>
        <translation>Калибровать</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Запустить</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Остановить</translation>
    </message>
    <message>
        <source>Start record</source>
        <translation>Начать запись</translation>
    </message>
    <message>
        <source>Stop record</source>
        <translation>Остановить запись</translation>
    </message>
    <message>
        <source>Control cursor (Press F10)</source>
        <translation>Управлять курсором (клавиша F10)</translation>
    </message>
    <message>
        <source>Screen</source>
        <translation>Экран</translation>
    </message>
    <message>
        <source>F9 sets a marker in the recording.</source>
        <translation>F9 ставит метку в записи.</translation>
    </message>
</context>
<context>
    <name>TrayIcon</name>
    <message>
        <source>Show window</source>
        <translation>Показать окно</translation>
    </message>
    <message>
        <source>Open dashboard</source>
        <translation>Открыть веб-панель</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Выход</translation>
    </message>
    <message>
        <source>Eye Tracker Service</source>
        <translation>Служба айтрекера</translation>
    </message>
    <message>
        <source>Recording: %1</source>
        <translation>Идёт запись: %1</translation>
    </message>
    <message>
        <source>Recording saved</source>
        <translation>Запись сохранена</translation>
    </message>
    <message>
        <source>Recording not saved</source>
        <translation>Запись не сохранена</translation>
    </message>
    <message>
        <source>Connection lost</source>
        <translation>Соединение потеряно</translation>
    </message>
    <message>
        <source>Interrupted recording recovered</source>
        <translation>Прерванная запись восстановлена</translation>
    </message>
    <message>
        <source>Ocela continues in the background. To end it, choose Quit in the menu of this icon.</source>
        <translation>Ocela продолжает работать в фоне. Чтобы завершить программу, выберите «Выход» в меню этого значка.</translation>
    </message>
    <message>
        <source>No samples</source>
        <translation>Нет данных</translation>
    </message>
    <message>
        <source>%1 is recording, but sends no samples. Open the window, choose this tracker and press Reconnect.</source>
        <translation>Запись с %1 идёт, но данные не поступают. Откройте окно, выберите этот трекер и нажмите «Переподключить».</translation>
    </message>
</context>
<context>
    <name>VTSettings</name>
    <message>
        <source>it is not a regular file</source>
        <translation>это не обычный файл</translation>
    </message>
    <message>
        <source>it is damaged and cannot be renamed</source>
        <translation>он повреждён, и его не удалось переименовать</translation>
    </message>
</context>
<context>
    <name>aSeePro</name>
    <message>
        <source>not calibrated</source>
        <translation>нет калибровки</translation>
    </message>
    <message>
        <source>device cannot be opened (error %1)</source>
        <translation>устройство не открывается (ошибка %1)</translation>
    </message>
    <message>
        <source>device does not start (error %1)</source>
        <translation>устройство не запускается (ошибка %1)</translation>
    </message>
    <message>
        <source>calibrated, reconnect to use it</source>
        <translation>калибровка выполнена, переподключите устройство</translation>
    </message>
</context>
<context>
    <name>asee::CalibrationOutcome</name>
    <message>
        <source>The calibration is finished and saved</source>
        <translation>Калибровка завершена и сохранена</translation>
    </message>
    <message>
        <source>The calibration has failed</source>
        <translation>Калибровка не удалась</translation>
    </message>
    <message>
        <source>Scores: left eye %1, right eye %2</source>
        <translation>Оценки: левый глаз %1, правый глаз %2</translation>
    </message>
    <message>
        <source>The tracker did not start the calibration (%1)</source>
        <translation>Трекер не начал калибровку (%1)</translation>
    </message>
    <message>
        <source>The tracker refused point %1 of %2 (%3)</source>
        <translation>Трекер отклонил точку %1 из %2 (%3)</translation>
    </message>
    <message>
        <source>The tracker could not compute the calibration (%1)</source>
        <translation>Трекер не смог рассчитать калибровку (%1)</translation>
    </message>
    <message>
        <source>The tracker refused the new calibration (%1)</source>
        <translation>Трекер отклонил новую калибровку (%1)</translation>
    </message>
    <message>
        <source>The calibration is used, but not saved, see Ocela.log</source>
        <translation>Калибровка действует, но не сохранена, см. Ocela.log</translation>
    </message>
    <message>
        <source>its library is not available</source>
        <translation>его библиотека недоступна</translation>
    </message>
    <message>
        <source>error %1</source>
        <translation>ошибка %1</translation>
    </message>
</context>
</TS>
