// @ts-check
import { areaOnScreen, browserScreenOf, screenCheckOf } from './calibrated_screen.js';
import { GazeCollector } from './gaze_collector.js';
import { Interruption } from './interruption.js';
import { Stage } from './stage.js';
import { inRandomOrder } from './target_order.js';
/** @import { Condition, LiveModel, LiveSample, State } from '../shared/live_model.js' */
/** @import { Setup } from './setup_form.js' */
/** @import { Target } from './target_order.js' */
/** @import { Validation } from './validation.js' */

/** Ocela sends samples in groups of up to 0.1 s. After this wait, the last samples of a target have arrived. */
const arrivalMs = 400;

const watchIntervalMs = 200;

/**
 * The run stops after this many checks without new samples. They begin a second after the last sample, so it stops after
 * about four seconds. A busy computer may delay samples for a second. Checks are counted, because it may also delay the
 * checks. Shorter losses show in the figures.
 */
const maxLostCheckCount = 15;

/** A run on the stage: shows the targets, collects the gaze, and watches Ocela and the tracker meanwhile. */
export class Run {
    #model;
    #setup;
    #stage = new Stage();
    /** null until the first target is shown. @type {GazeCollector | null} */
    #collector = null;
    #startedAt = Date.now();
    /** The state of Ocela when the run started. */
    #state;
    #missedBefore = 0;
    /** The number of successive checks without new samples. */
    #lostCheckCount = 0;

    /**
     * @param {LiveModel} model
     * @param {State} state
     * @param {Setup} setup
     */
    constructor(model, state, setup) {
        this.#model = model;
        this.#state = state;
        this.#setup = setup;
    }

    /** @param {LiveSample[]} samples */
    takeSamples(samples) {
        this.#collector?.add(samples);
    }

    /**
     * Measures. Call this in reply to a key or a click. Throws an Interruption if the run ends early.
     *
     * @returns {Promise<Validation>}
     */
    async measure() {
        const watch = setInterval(() => this.#watch(), watchIntervalMs);
        try {
            await this.#stage.open();
            await this.#stage.instruct((this.#setup.distanceMm * innerWidth) / this.#setup.widthMm);
            if (!this.#stage.isWholeScreen) throw new Interruption('notWholeScreen');
            const collector = new GazeCollector();
            this.#collector = collector;
            this.#missedBefore = this.#model.missed.samples;
            await this.#show(inRandomOrder(), collector);
            const repeated = collector.targetsWithTooFewSamples(this.#setup.expectedHz);
            await this.#show(repeated, collector);
            return this.#validation(repeated, collector);
        } finally {
            clearInterval(watch);
            await this.#stage.close();
        }
    }

    /**
     * @param {Target[]} targets
     * @param {GazeCollector} collector
     */
    async #show(targets, collector) {
        const { clock } = this.#model;
        for (const target of targets) {
            const { fromMs, toMs } = await this.#stage.show(target);
            collector.addWindow({ target, fromMs: clock.now(fromMs), toMs: clock.now(toMs) });
        }
        if (targets.length > 0) await this.#stage.pause(arrivalMs);
    }

    /** Stops the run when the tracker, the calibration or the area changes, or when the samples stop. */
    #watch() {
        const { state } = this.#model;
        if (state?.run !== this.#state.run || state.tracker?.name !== this.#state.tracker?.name)
            return this.#stage.interrupt('trackerChanged');
        if (state.calibration.running) return this.#stage.interrupt('calibrationChanged');
        if (JSON.stringify(state.area) !== JSON.stringify(this.#state.area)) return this.#stage.interrupt('areaChanged');
        const condition = this.#model.condition(performance.now());
        this.#lostCheckCount = condition === 'live' ? 0 : this.#lostCheckCount + 1;
        if (this.#lostCheckCount >= maxLostCheckCount) this.#stage.interrupt(...this.#lossOf(condition));
    }

    /**
     * Returns the reason for stopping the run without samples.
     *
     * @param {Condition} condition
     * @returns {ConstructorParameters<typeof Interruption>}
     */
    #lossOf(condition) {
        const { state, lostReason } = this.#model;
        if (condition === 'offline') return ['lostOcela', { reason: lostReason ?? '' }];
        return ['lostTracker', { reason: state?.tracker?.reason ?? '' }];
    }

    /**
     * @param {Target[]} repeated
     * @param {GazeCollector} collector
     * @returns {Validation}
     */
    #validation(repeated, collector) {
        const { widthMm, heightMm, distanceMm, usesLiveDistance, participant, session, expectedHz } = this.#setup;
        const resolution = this.#stage.resolution;
        const measuredMm = collector.meanDistanceMm();
        const isMeasured = usesLiveDistance && measuredMm > 0;
        return {
            // crypto.randomUUID() is missing on pages from other computers.
            id: `${this.#startedAt}-${Math.random().toString(36).slice(2)}`,
            time: this.#startedAt,
            participant,
            session,
            tracker: this.#state.tracker?.name ?? '',
            expectedHz,
            geometry: { widthMm, heightMm, ...resolution, distanceMm: isMeasured ? Math.round(measuredMm) : distanceMm },
            samples: collector.samples(areaOnScreen(this.#state), resolution),
            circumstances: {
                fileName: '',
                screenCheck: screenCheckOf(this.#state, { ...browserScreenOf(window), ...resolution }),
                repeatedTargets: repeated.map(({ id }) => id),
                missedCount: this.#model.missed.samples - this.#missedBefore,
                isRightEyeCrossed: collector.isRightEyeCrossed,
            },
        };
    }
}
