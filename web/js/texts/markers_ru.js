// @ts-check

/** The texts about the markers of a record file in Russian. {name} is replaced by a value. */
export default {
    markersOf: 'Меток: {count}, из файла «{name}».',
    markersByRow: 'Показанное время может отличаться от времени прихода данных. Поэтому каждая метка показана после измерения, которое было последним, когда её поставили.',
    saveFixations: 'Сохранить фиксации в CSV',
    intervals: 'Интервалы между метками',
    intervalsHint: 'Нажмите на интервал, чтобы показать его. Он начинается со своей метки и длится до следующей.',
    saveIntervals: 'Сохранить таблицу в CSV',
    moreIntervals: 'Показать ещё интервалы',
    beforeFirstMarker: 'До первой метки',
    intervalMarker: 'Метка',
    intervalStart: 'Начало, с',
    intervalDuration: 'Длительность, с',
    intervalSamples: 'Измерения',
    intervalValid: 'Годные, %',
    intervalMeanFixation: 'Средняя фиксация, мс',
    intervalLeftPupil: 'Левый зрачок, мм',
    intervalRightPupil: 'Правый зрачок, мм',

    notEvents: 'Строка {line}: это не файл меток. Файл меток начинается с «{expected},…», а этот файл — с «{found}».',
    openQuote: 'Строка {line}, столбец {column}: в конце текста нет кавычки.',
    afterQuote: 'Строка {line}, столбец {column}: после кавычки в конце текста стоит «{found}». Кавычку внутри текста нужно удваивать.',
    noWholeNumber: 'Строка {line}, столбец {column} ({name}): «{found}» — не целое число от 0.',
    noSuchRow: 'Строка {line}, столбец {column} ({name}): в файле записи нет строки {found}. Файл меток относится к другой записи.',
};
