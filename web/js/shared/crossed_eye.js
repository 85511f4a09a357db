const fewest = 30;
const clearly = 2;

/**
 * Some trackers deliver the right eye's two axes exchanged. Nothing in the data says so, but the combined gaze shows
 * it: the exchanged eye is far from it, and close to it once its axes are put right.
 */
export class CrossedEye {
    crossed = false;
    #decay;
    #count = 0;
    #asDelivered = 0;
    #exchanged = 0;

    /** @param decay what one sample leaves of the weight of those before it; 1: all count alike */
    constructor(decay = 1) {
        this.#decay = decay;
    }

    /** Takes a sample's combined gaze and its right eye's as delivered; returns whether the axes are exchanged. */
    add(x, y, rightX, rightY) {
        const asDelivered = Math.abs(rightX - x) + Math.abs(rightY - y);
        const exchanged = Math.abs(rightY - x) + Math.abs(rightX - y);
        if (Number.isNaN(asDelivered + exchanged)) return this.crossed;
        ++this.#count;
        this.#asDelivered = this.#asDelivered * this.#decay + asDelivered;
        this.#exchanged = this.#exchanged * this.#decay + exchanged;
        if (this.#count >= fewest) this.#decide();
        return this.crossed;
    }

    /** Near the diagonal both fit alike: only a clear difference counts. */
    #decide() {
        if (this.#exchanged * clearly < this.#asDelivered) this.crossed = true;
        if (this.#asDelivered * clearly < this.#exchanged) this.crossed = false;
    }
}
