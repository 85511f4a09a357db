// @ts-check

/** The texts about the markers of a record file in English. {name} is replaced by a value. */
export default {
    markersOf: 'Markers: {count}, from “{name}”.',
    markersByRow: 'The shown times may differ from the times of arrival. Each marker is therefore shown after the sample that was the newest one when the marker was set.',
    saveFixations: 'Save fixations as CSV',
    intervals: 'Intervals between markers',
    intervalsHint: 'Click an interval to show it. It starts at its marker and ends at the next one.',
    saveIntervals: 'Save table as CSV',
    moreIntervals: 'Show more intervals',
    beforeFirstMarker: 'Before the first marker',
    intervalMarker: 'Marker',
    intervalStart: 'Start, s',
    intervalDuration: 'Duration, s',
    intervalSamples: 'Samples',
    intervalValid: 'Valid, %',
    intervalMeanFixation: 'Mean fixation, ms',
    intervalLeftPupil: 'Left pupil, mm',
    intervalRightPupil: 'Right pupil, mm',

    notEvents: 'Line {line}: this is not an events file. An events file starts with “{expected},…”, but this file starts with “{found}”.',
    openQuote: 'Line {line}, column {column}: a quotation mark is missing at the end of a text.',
    afterQuote: 'Line {line}, column {column}: “{found}” follows the quotation mark at the end of a text. A quotation mark in a text must be doubled.',
    noWholeNumber: 'Line {line}, column {column} ({name}): “{found}” is not a whole number from 0.',
    noSuchRow: 'Line {line}, column {column} ({name}): the record file has no row {found}. The events file belongs to another recording.',
};
