// @ts-check
import { call } from '../shared/api.js';
import { byId, inputById, setText } from '../shared/dom.js';
import { EventStream } from '../shared/event_stream.js';
import { onLanguage, startLanguage, text } from '../shared/language.js';
import { LiveModel } from '../shared/live_model.js';
import { calibratedScreenOf } from './calibrated_screen.js';
import { rememberValidation, startHistory } from './history_view.js';
import { Interruption } from './interruption.js';
import { liveChecks } from './live_checks.js';
import { startOpening, stopReading } from './open_file.js';
import { hideResult, showResult, startResult } from './result_view.js';
import { Run } from './run.js';
import { showChecks } from './setup_checks.js';
import { SetupForm } from './setup_form.js';
/** @import { TextKey, TextValues } from '../shared/language.js' */
/** @import { Validation } from './validation.js' */

/** @typedef {'setup' | 'run' | 'result'} Step */
/** @typedef {{ key: TextKey, values: TextValues }} Problem */

const refreshMs = 250;

const model = new LiveModel();
/** The current run; null if none is running. @type {Run | null} */
let run = null;
/** Why the last run ended early, or a request failed. @type {Problem | null} */
let problem = null;

startLanguage();
const form = new SetupForm();

/** @param {Step} step */
function setStep(step) {
    document.documentElement.dataset.step = step;
}

/** @param {Problem | null} next */
function showProblem(next) {
    problem = next;
    byId('problem').hidden = !problem;
    setText('problem', problem ? text(problem.key, problem.values).trim() : '');
}

function refresh() {
    if (run) return;
    const nowMs = performance.now();
    const measured = liveChecks(model.columns, model.clock.now(nowMs));
    if (model.state) form.update(model.state, measured);
    showChecks(model, model.condition(nowMs), measured, form.setup.expectedHz);
}

/** Measures and shows the result. If the run ends early, the page shows again what it showed before. */
async function start() {
    if (run || !model.state) return;
    if (!form.isValid()) {
        showSetup();
        return form.showMistake();
    }
    const previousStep = document.documentElement.dataset.step;
    stopReading();
    showProblem(null);
    run = new Run(model, model.state, form.setup);
    setStep('run');
    try {
        const validation = await run.measure();
        run = null;
        show(validation, true);
        rememberValidation(validation);
    } catch (error) {
        run = null;
        setStep(previousStep === 'result' ? 'result' : 'setup');
        byId(previousStep === 'result' ? 'repeat' : 'start').focus();
        showProblem(error instanceof Interruption ? error : { key: 'runFailed', values: { reason: String(error) } });
    }
}

/**
 * @param {Validation} validation
 * @param {boolean} isRepeatable
 */
function show(validation, isRepeatable = false) {
    // The history may still be reading an entry when a run starts.
    if (run) return;
    showProblem(null);
    setStep('result');
    showResult(validation, isRepeatable);
}

function showSetup() {
    showProblem(null);
    hideResult();
    setStep('setup');
}

async function calibrateAgain() {
    showSetup();
    const screen = (model.state && calibratedScreenOf(model.state)?.number) ?? 1;
    try {
        await call('POST', 'calibration', { body: { screen } });
    } catch (error) {
        showProblem({ key: 'calibrationRefused', values: { reason: /** @type {Error} */ (error).message } });
    }
}

startResult({ repeat: start, calibrateAgain });
byId('to-setup').addEventListener('click', showSetup);
startHistory({ open: show });
startOpening({ opened: show });
inputById('start').addEventListener('click', start);
onLanguage(() => {
    showProblem(problem);
    refresh();
});
new EventStream({
    state: state => model.takeState(state, performance.now()),
    samples: samples => {
        model.takeSamples(samples, performance.now());
        run?.takeSamples(samples);
    },
    event: marker => model.takeMarker(marker),
    missed: missed => model.takeMissed(missed),
    lost: reason => model.lose(reason),
});
setInterval(refresh, refreshMs);
refresh();
