// @ts-check

const minSampleCount = 30;

/** Near the diagonal, both orders of the axes fit. A decision needs one order to be this many times closer than the other. */
const clearRatio = 2;

/**
 * Detects a tracker that exchanges the axes of the right eye: the right eye is far from the combined gaze as delivered, and
 * close to it after an exchange. docs/records.md describes the rule. The simulators use the same rule.
 */
export class CrossedEye {
    crossed = false;
    #decay;
    #count = 0;
    #asDelivered = 0;
    #exchanged = 0;

    /** @param {number} decay the factor by which a sample reduces the weight of earlier ones; 1 means equal weights */
    constructor(decay = 1) {
        this.#decay = decay;
    }

    /**
     * Adds a sample's combined gaze and its right eye as delivered. Returns whether the axes are exchanged.
     *
     * @param {number} x
     * @param {number} y
     * @param {number} rightX
     * @param {number} rightY
     */
    add(x, y, rightX, rightY) {
        const asDelivered = Math.abs(rightX - x) + Math.abs(rightY - y);
        const exchanged = Math.abs(rightY - x) + Math.abs(rightX - y);
        if (!Number.isFinite(asDelivered + exchanged)) return this.crossed;
        ++this.#count;
        this.#asDelivered = this.#asDelivered * this.#decay + asDelivered;
        this.#exchanged = this.#exchanged * this.#decay + exchanged;
        if (this.#count >= minSampleCount) this.#decide();
        return this.crossed;
    }

    #decide() {
        if (this.#exchanged * clearRatio < this.#asDelivered) this.crossed = true;
        if (this.#asDelivered * clearRatio < this.#exchanged) this.crossed = false;
    }
}
