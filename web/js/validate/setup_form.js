// @ts-check
import { byId, inputById, setText } from '../shared/dom.js';
import { onLanguage, text } from '../shared/language.js';
import { browserScreenOf, calibratedScreenOf } from './calibrated_screen.js';
import { startCardBox } from './card_box.js';
import { nominalRateOf } from './live_checks.js';
import { remember, remembered } from '../shared/setup_memory.js';
/** @import { State } from '../shared/live_model.js' */

/**
 * The values of the set-up form. The screen's size and the distance are in mm.
 *
 * @typedef {object} Setup
 * @property {number} widthMm
 * @property {number} heightMm
 * @property {number} distanceMm
 * @property {boolean} usesLiveDistance whether the distance is the tracker's mean distance during the run, if there is one
 * @property {string} participant
 * @property {string} session
 * @property {number | null} expectedHz
 */

/** @typedef {'remembered' | 'system' | 'unknown'} SizeSource */

const sizeTexts = /** @type {const} */ ({ remembered: 'sizeRemembered', system: 'sizeFromSystem', unknown: 'sizeUnknown' });

/** The number of the screen while the calibrated area is not known. Screens are numbered from 1. */
const unknownScreen = 0;

/** The remembered rate of a tracker for which the user has cleared the field. */
const noRate = 0;

const width = inputById('width-mm');
const height = inputById('height-mm');
const distance = inputById('distance');
const usesLive = inputById('live-distance');
const participant = inputById('participant');
const session = inputById('session');
const expectedRate = inputById('expected-rate');

/** The fields of the set-up. Their values are remembered when they change. */
export class SetupForm {
    #element = /** @type {HTMLFormElement} */ (byId('setup-form'));
    #memory = remembered();
    /** The screen whose size is in the fields. */
    #screenKey = '';
    /** @type {SizeSource} */
    #sizeSource = 'unknown';
    /** The tracker whose rate and distance are in the fields. */
    #trackerName = '';
    /** Whether the rate is derived from the measured one. It then follows the measured rate. */
    #isRateDerived = true;

    constructor() {
        participant.value = this.#memory.participant;
        session.value = this.#memory.session;
        distance.addEventListener('change', () => { usesLive.checked = false; });
        for (const field of [width, height]) field.addEventListener('change', () => this.#setSize('remembered'));
        expectedRate.addEventListener('change', () => { this.#isRateDerived = false; });
        for (const field of [distance, usesLive, participant, session, expectedRate])
            field.addEventListener('change', () => this.#remember());
        this.#element.addEventListener('submit', event => event.preventDefault());
        startCardBox(mmPerCssPx => this.#useCard(mmPerCssPx));
        onLanguage(() => this.#showSizeSource());
    }

    /** Returns whether all values are usable. */
    isValid() {
        return this.#element.checkValidity();
    }

    /** Shows the browser's message at the first wrong field. The form must be visible. */
    showMistake() {
        this.#element.reportValidity();
    }

    /** @returns {Setup} */
    get setup() {
        return {
            widthMm: width.valueAsNumber,
            heightMm: height.valueAsNumber,
            distanceMm: distance.valueAsNumber,
            usesLiveDistance: usesLive.checked,
            participant: participant.value.trim(),
            session: session.value.trim(),
            expectedHz: expectedRate.valueAsNumber > 0 ? expectedRate.valueAsNumber : null,
        };
    }

    /**
     * Fills the fields that depend on the screen and the tracker.
     *
     * @param {State} state
     * @param {{ distanceMm: number, rateHz: number }} measured NaN for values that are not known
     */
    update(state, { distanceMm, rateHz }) {
        this.#updateSize(state);
        this.#updateTracker(state.tracker?.name ?? '', rateHz);
        usesLive.disabled = Number.isNaN(distanceMm);
        if (usesLive.checked && !Number.isNaN(distanceMm)) setValue(distance, Math.round(distanceMm));
    }

    /** @param {State} state */
    #updateSize(state) {
        const { widthPx, heightPx } = browserScreenOf(window);
        const calibrated = calibratedScreenOf(state);
        const size = [widthPx, heightPx].join();
        const key = `${calibrated?.number ?? unknownScreen},${size}`;
        setText('resolution', text('pixels', { width: widthPx, height: heightPx }));
        // While the calibrated screen is not known, the fields keep their values.
        if (key === this.#screenKey || (!calibrated && this.#screenKey.endsWith(`,${size}`))) return;
        this.#screenKey = key;
        const known = this.#memory.screens[key] ?? this.#memory.screens[`${unknownScreen},${size}`];
        const { widthMm = 0, heightMm = 0 } = known ?? calibrated ?? {};
        const isKnown = widthMm > 0 && heightMm > 0;
        width.value = isKnown ? String(widthMm) : '';
        height.value = isKnown ? String(heightMm) : '';
        this.#sizeSource = known ? 'remembered' : isKnown ? 'system' : 'unknown';
        this.#showSizeSource();
    }

    /**
     * @param {string} trackerName
     * @param {number} rateHz
     */
    #updateTracker(trackerName, rateHz) {
        if (trackerName !== this.#trackerName) {
            const { ratesHz: { [trackerName]: rate }, distancesMm: { [trackerName]: distanceMm } } = this.#memory;
            this.#trackerName = trackerName;
            this.#isRateDerived = rate === undefined;
            expectedRate.value = rate > 0 ? String(rate) : '';
            usesLive.checked = !(distanceMm > 0);
            distance.value = distanceMm > 0 ? String(distanceMm) : '';
        }
        const nominalHz = nominalRateOf(rateHz, trackerName);
        if (this.#isRateDerived && !Number.isNaN(nominalHz)) setValue(expectedRate, nominalHz);
    }

    /** @param {number} mmPerCssPx */
    #useCard(mmPerCssPx) {
        width.value = String(Math.round(mmPerCssPx * screen.width));
        height.value = String(Math.round(mmPerCssPx * screen.height));
        this.#setSize('remembered');
    }

    /** @param {SizeSource} source */
    #setSize(source) {
        this.#sizeSource = source;
        this.#showSizeSource();
        this.#remember();
    }

    #showSizeSource() {
        setText('size-source', text(sizeTexts[this.#sizeSource]));
    }

    #remember() {
        const { setup } = this;
        const memory = this.#memory;
        if (this.#sizeSource === 'remembered' && setup.widthMm > 0 && setup.heightMm > 0)
            memory.screens[this.#screenKey] = { widthMm: setup.widthMm, heightMm: setup.heightMm };
        if (this.#trackerName && !this.#isRateDerived) memory.ratesHz[this.#trackerName] = setup.expectedHz ?? noRate;
        if (setup.usesLiveDistance) delete memory.distancesMm[this.#trackerName];
        else if (setup.distanceMm > 0) memory.distancesMm[this.#trackerName] = setup.distanceMm;
        memory.participant = setup.participant;
        memory.session = setup.session;
        remember(memory);
    }
}

/**
 * Fills a field, unless the user is editing it.
 *
 * @param {HTMLInputElement} field
 * @param {number} value
 */
function setValue(field, value) {
    if (document.activeElement !== field && field.value !== String(value)) field.value = String(value);
}
