// @ts-check

/**
 * The texts about the methods of fixation detection in Russian.
 *
 * @type {typeof import('./detection_en.js').default}
 */
export default {
    detectionMethod: 'Метод поиска фиксаций',
    dispersionMethod: 'По разбросу',
    velocityMethod: 'По скорости',
    detecting: 'Идёт поиск фиксаций…',
    moreParameters: 'Другие параметры',
    maxVelocity: 'Порог скорости, °/с',
    smoothingWindow: 'Окно расчёта скорости, мс',
    maxMergeGap: 'Слияние: наибольший промежуток, мс',
    maxMergeAngle: 'Слияние: наибольший угол,\u00A0°',
    velocityHint: 'Порог скорости: во время фиксации угловая скорость взгляда ниже порога.',
    geometryMissing: 'Не указано: {fields}. Введите значения, которые были при записи. Без них угловая скорость неизвестна.',
    geometryRemembered: 'Размер или расстояние взяты из вашего последнего ввода или из валидации в этом браузере. Убедитесь, что они подходят к этой записи.',
    distanceFromRecord: 'Расстояние — медиана по этой записи.',
};
