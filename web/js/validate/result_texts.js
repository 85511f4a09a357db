// @ts-check
import { dateAndTime, number, quantity, text } from '../shared/language.js';
import { trackerTitle } from './tracker_title.js';
/** @import { PictureOptions } from './quality_picture.js' */
/** @import { Validation } from './validation.js' */

/**
 * Returns the labels of a validation, or the name of its file.
 *
 * @param {Pick<Validation, 'participant' | 'session' | 'circumstances'>} validation
 */
export function titleOf({ participant, session, circumstances }) {
    return labelsOf(participant, session) || circumstances.fileName || text('unlabelled');
}

/**
 * Returns the labels, or an empty text if there are none.
 *
 * @param {string} participant
 * @param {string} session
 */
export function labelsOf(participant, session) {
    const labels = [
        participant && text('participantLabel', { name: participant }), session && text('sessionLabel', { name: session }),
    ];
    return labels.filter(label => label !== '').join(' · ');
}

/**
 * Returns the conditions of a validation.
 *
 * @param {Validation} validation
 */
export function factsOf({ participant, session, time, tracker, expectedHz, geometry, circumstances }) {
    const { widthMm, heightMm, widthPx, heightPx, distanceMm } = geometry;
    const size = (/** @type {number} */ value) => number(value, Number.isInteger(value) ? 0 : 1);
    const facts = [
        dateAndTime(new Date(time)),
        trackerTitle(tracker),
        expectedHz === null ? '' : quantity('hz', expectedHz, Number.isInteger(expectedHz) ? 0 : 1),
        text('screenFact', { width: size(widthMm), height: size(heightMm), widthPx, heightPx }),
        text('distanceFact', { value: number(distanceMm) }),
        participant || session ? circumstances.fileName : '',
    ];
    return facts.filter(fact => fact !== '').join(' · ');
}

/**
 * Returns the explanation of the picture, as two lines.
 *
 * @param {PictureOptions} options
 */
export function legendOf({ enlargement, ringDeg }) {
    const ring = text('legendRing', { value: quantity('degrees', ringDeg, 2) });
    const enlarged = enlargement > 1 ? ` ${text('legendEnlarged', { factor: enlargement })}` : '';
    return [text('legendShapes'), ring + enlarged];
}
