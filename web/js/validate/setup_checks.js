// @ts-check
import { byId, inputById, setText } from '../shared/dom.js';
import { number, quantity, text } from '../shared/language.js';
import { calibrationResult, screenName } from '../shared/state_texts.js';
import { browserScreenOf, calibratedScreenOf, screenCheckOf, zoomPercentOf } from './calibrated_screen.js';
import { maxDistanceSdMm, maxRateDifference, minSeenShare } from './live_checks.js';
import { trackerTitle } from './tracker_title.js';
/** @import { Condition, LiveModel, State } from '../shared/live_model.js' */
/** @import { liveChecks } from './live_checks.js' */

/** @typedef {'good' | 'warning' | 'unknown'} Level */

/**
 * Shows whether the participant, the tracker and the screen are ready.
 *
 * @param {LiveModel} model
 * @param {Condition} condition
 * @param {ReturnType<typeof liveChecks>} measured
 * @param {number | null} expectedHz
 */
export function showChecks(model, condition, measured, expectedHz) {
    const { state } = model;
    const isLive = condition === 'live';
    show('tracker-check', isLive ? 'good' : 'warning', isLive ? text('trackerReady', { name: trackerTitle(state?.tracker?.name ?? '') }) : conditionText(model, condition));
    for (const part of ['left-check', 'right-check', 'distance-check', 'rate-check']) byId(part).hidden = !isLive;
    inputById('start').disabled = !isLive || (state?.calibration.running ?? true);
    if (state) {
        showCalibration(state);
        showScreen(state);
    }
    showZoom();
    if (isLive) showMeasured(measured, expectedHz);
}

/**
 * @param {LiveModel} model
 * @param {Condition} condition
 */
function conditionText({ lostReason, state }, condition) {
    const reason = condition === 'offline' ? lostReason : condition === 'notConnected' ? state?.tracker?.reason : null;
    return [text(condition), reason || text(/** @type {const} */ (`${condition}Hint`))].filter(Boolean).join('. ');
}

/** @param {State} state */
function showCalibration({ calibration: { running, last } }) {
    if (running) show('calibration-check', 'warning', text('calibrationRuns'));
    else if (!last) show('calibration-check', 'unknown', text('noCalibrationYet'));
    else {
        const level = last.result === 'done' || last.result === 'unknown' ? 'good' : 'warning';
        show('calibration-check', level, calibrationResult(last));
    }
}

/** @param {State} state */
function showScreen(state) {
    const calibrated = calibratedScreenOf(state);
    const check = screenCheckOf(state, browserScreenOf(window));
    const name = calibrated ? screenName(calibrated) : '';
    setText('calibrated-screen', calibrated ? text('calibratedScreen', { name }) : text('calibratedScreenUnknown'));
    byId('screen-check').dataset.check = check;
    if (check === 'match') show('screen-check', 'good', text('onCalibratedScreen', { name }));
    else if (check === 'otherScreen') show('screen-check', 'warning', text('onOtherScreen', { name }));
    else show('screen-check', 'unknown', text('screenNotKnown'));
}

function showZoom() {
    const percent = zoomPercentOf(window);
    // A zoomed page reports a wrong size of the screen.
    inputById('use-card').disabled = percent !== null;
    byId('zoom-check').hidden = percent === null;
    show('zoom-check', 'warning', text('zoomed', { percent: percent ?? 100 }));
}

/**
 * @param {ReturnType<typeof liveChecks>} measured
 * @param {number | null} expectedHz
 */
function showMeasured({ leftShare, rightShare, distanceMm, distanceSdMm, rateHz }, expectedHz) {
    showEye('left-check', text('leftEye'), leftShare);
    showEye('right-check', text('rightEye'), rightShare);
    if (Number.isNaN(distanceMm)) show('distance-check', 'unknown', text('distanceNotMeasured'));
    else {
        const isSteady = distanceSdMm <= maxDistanceSdMm;
        const values = { distance: number(distanceMm), sd: number(distanceSdMm, 1) };
        show('distance-check', isSteady ? 'good' : 'warning', text(isSteady ? 'distanceSteady' : 'distanceNotSteady', values));
    }
    showRate(rateHz, expectedHz);
}

/**
 * @param {string} id
 * @param {string} eye
 * @param {number} share
 */
function showEye(id, eye, share) {
    const isSeen = share >= minSeenShare;
    const percent = quantity('percent', 100 * share);
    show(id, isSeen ? 'good' : 'warning', text(isSeen ? 'eyeSeen' : 'eyeNotSeen', { eye, percent }));
}

/**
 * @param {number} rateHz
 * @param {number | null} expectedHz
 */
function showRate(rateHz, expectedHz) {
    const rate = quantity('hz', rateHz, 1);
    if (expectedHz === null) show('rate-check', 'unknown', text('rateMeasured', { rate }));
    else {
        const isExpected = Math.abs(rateHz / expectedHz - 1) <= maxRateDifference;
        const values = { rate, expected: quantity('hz', expectedHz, expectedHz % 1 ? 1 : 0) };
        show('rate-check', isExpected ? 'good' : 'warning', text(isExpected ? 'rateAsExpected' : 'rateNotAsExpected', values));
    }
}

/**
 * @param {string} id
 * @param {Level} level
 * @param {string} content
 */
function show(id, level, content) {
    byId(id).dataset.level = level;
    setText(id, content);
}
