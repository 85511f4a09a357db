/** So many equal values in a row are no measurement: the noise of a real one changes its last digits. */
const mostRepeats = 3;

/** null (what JSON has for an infinite number) and whatever else is no number. */
function finite(value) {
    return Number.isFinite(value) ? value : NaN;
}

function positive(value) {
    return value > 0 ? finite(value) : NaN;
}

/** Trackers write 0, 0 for a gaze that they do not have; a measured one is never exactly that. */
function point(x, y) {
    const known = Number.isFinite(x) && Number.isFinite(y) && (x !== 0 || y !== 0);
    return known ? [x, y] : [NaN, NaN];
}

/**
 * Neither the API nor the record tells whether an eye was seen, so its values have to: an eye that is lost is all zero
 * with some trackers, and stays at its last values with others.
 */
class Eye {
    #x = NaN;
    #y = NaN;
    #pupil = NaN;
    #repeats = 0;

    read(x, y, pupil) {
        const same = x === this.#x && y === this.#y && pupil === this.#pupil;
        this.#repeats = same ? this.#repeats + 1 : 0;
        [this.#x, this.#y, this.#pupil] = [x, y, pupil];
        return this.#repeats < mostRepeats ? [...point(x, y), positive(pupil)] : [NaN, NaN, NaN];
    }
}

/**
 * Turns samples, as the API has them, into rows of SampleColumns: NaN for what was not measured. One reader a stream,
 * as it remembers the last values.
 */
export class SampleReader {
    #left = new Eye();
    #right = new Eye();

    read(sample) {
        const [x, y] = sample.valid ? [finite(sample.x), finite(sample.y)] : [NaN, NaN];
        const [leftX, leftY, leftPupil] = this.#left.read(sample.l_x, sample.l_y, sample.l_pupil_mm);
        const [rightX, rightY, rightPupil] = this.#right.read(sample.r_x, sample.r_y, sample.r_pupil_mm);
        return { x, y, leftX, leftY, rightX, rightY, leftPupil, rightPupil, distance: positive(sample.distance_cm) };
    }
}
