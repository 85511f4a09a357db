import assert from 'node:assert/strict';
import { execFileSync, spawn, spawnSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, readFileSync, rmSync, symlinkSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';
import { createHome, startProgram } from '../web/support/program.js';
import { waitFor } from '../web/support/wait.js';

/** This computer's address in the network with the other computer. */
const address = '192.0.2.1';
const otherAddress = '192.0.2.2';
const port = 3735;
const allowedOrigin = 'https://lab.example:8443';

const settingNames = { C: 'AllowOtherComputers', P: 'AllowForeignPages', F: 'ServeAnyFile' };

/** The headers of Chromium for a script's request, and for an image's. */
const foreignPage = ['Origin: https://attacker.example', 'Sec-Fetch-Site: cross-site'];
const foreignImage = ['Sec-Fetch-Site: cross-site'];

/** The requests of each row in the table of docs/security.md. */
const senders = {
    'a program on this computer': [{}, { host: address }, { host: '[::1]' }],
    'a program on another computer': [{ host: address, fromOther: true }],
    "Ocela's own page in a browser": [
        { headers: [`Origin: http://localhost:${port}`, 'Sec-Fetch-Site: same-origin'] },
        { headers: ['Sec-Fetch-Site: same-origin'] },
    ],
    'a page of an allowed web origin': [{ headers: [`Origin: ${allowedOrigin}`, 'Sec-Fetch-Site: cross-site'] }],
    'any other web page in a browser on this computer': [
        { headers: foreignPage }, { headers: foreignImage }, { headers: ['Origin: null', 'Sec-Fetch-Site: cross-site'] },
    ],
    'any other web page in a browser on another computer': [
        { host: address, fromOther: true, headers: ['Origin: https://attacker.example'] },
    ],
    'a page whose host name leads to this computer (DNS rebinding)': [
        { headers: [`Host: attacker.example:${port}`, 'Sec-Fetch-Site: same-origin'] },
        { headers: [`Host: attacker.example:${port}`, `Origin: http://attacker.example:${port}`] },
    ],
};

let folder;  // the working directory of the program
let otherComputer;  // a process in another network namespace

/** The requests of each column: paths, and how an answer shows that the request was accepted. */
const requests = {
    'simple API': [{ path: '/lastsample', accepted: answer => answer.includes('"result":true,"sample"') }],
    '`/api/v1`': [{ path: '/api/v1/state', accepted: answer => answer.includes('"trackers"') }],
    "files of Ocela's pages": [{ path: '/', accepted: answer => answer === 'a page' }],
    'files and recordings in other folders': () => [
        ...[`/ROOT/${folder}/secret/file`, '/../secret/file', '/%2e%2e|secret|file', '/link/file', '/file-link']
            .map(path => ({ path, accepted: answer => answer === 'a secret' })),
        { path: `/startrecord&path=${folder}/secret/r.csv`, accepted: answer => answer.includes('"result":true') },
    ],
};

/** Runs a command on the other computer, which is a network namespace. */
const onOther = (...command) => ['nsenter', `--net=/proc/${otherComputer.pid}/ns/net`, ...command];

function run([program, ...args]) {
    execFileSync(program, args);
}

function curl(path, { host = '127.0.0.1', fromOther = false, headers = [] }) {
    const options = ['--silent', '--path-as-is', '--globoff', '--max-time', '20'];
    const command = ['curl', ...options, ...headers.flatMap(header => ['-H', header]), `http://${host}:${port}${path}`];
    const [program, ...args] = fromOther ? onOther(...command) : command;
    return spawnSync(program, args, { encoding: 'utf8' }).stdout;
}

/** Returns the rows of the table in docs/security.md as [who, {what: condition}]. */
function documentedRows() {
    const document = readFileSync(new URL('../../docs/security.md', import.meta.url), 'utf8');
    const lines = document.slice(document.indexOf('| who |')).split('\n\n')[0].split('\n');
    const [[, ...columns], , ...rows] = lines.map(line => line.split('|').slice(1, -1).map(cell => cell.trim()));
    return rows.map(([who, ...cells]) => [who, Object.fromEntries(columns.map((what, i) => [what, cells[i]]))]);
}

/** Returns whether a cell permits a request while the settings in `on`, such as "CF", are on. */
function permits(cell, on) {
    if (cell === 'yes' || cell === 'no') return cell === 'yes';
    return cell.split(', ').every(letter => on.includes(letter));
}

before(async () => {
    folder = mkdtempSync(join(tmpdir(), 'ocela-access-'));
    mkdirSync(join(folder, 'program/http'), { recursive: true });
    mkdirSync(join(folder, 'program/secret'));
    folder = join(folder, 'program');
    writeFileSync(join(folder, 'http/index.html'), 'a page');
    writeFileSync(join(folder, 'secret/file'), 'a secret');
    symlinkSync('../secret', join(folder, 'http/link'));
    symlinkSync(join(folder, 'secret/file'), join(folder, 'http/file-link'));

    otherComputer = spawn('unshare', ['--net', 'sleep', 'infinity'], { stdio: 'ignore' });
    const isReady = () => readFileSync(`/proc/${otherComputer.pid}/comm`, 'utf8') === 'sleep\n';
    await waitFor(isReady, 'the other computer has a network namespace');
    run(['ip', 'link', 'add', 'ocela0', 'type', 'veth', 'peer', 'name', 'ocela1', 'netns', `${otherComputer.pid}`]);
    run(['ip', 'address', 'add', `${address}/24`, 'dev', 'ocela0']);
    run(['ip', 'link', 'set', 'ocela0', 'up']);
    run(onOther('ip', 'address', 'add', `${otherAddress}/24`, 'dev', 'ocela1'));
    run(onOther('ip', 'link', 'set', 'ocela1', 'up'));
});

after(() => {
    otherComputer?.kill();
    rmSync(join(folder, '..'), { recursive: true, force: true });
});

/** Sends all requests of a cell. */
function tryCell(who, what, cell, on) {
    const tried = typeof requests[what] === 'function' ? requests[what]() : requests[what];
    for (const sender of senders[who]) {
        // While the program listens only on the loopback addresses, the other address cannot be used at all.
        if (sender.host === address && !sender.fromOther && !on.includes('C')) continue;
        for (const { path, accepted } of tried) {
            const answer = curl(path, sender);
            assert.equal(accepted(answer), permits(cell, on), `${who}: ${path} ${JSON.stringify(sender)}: ${answer}`);
        }
    }
}

for (const on of ['CPF', 'CP', 'CF', 'PF', '']) {
    test(`access is as documented while the settings "${on}" are on`, async t => {
        const settings = { AllowedOrigins: allowedOrigin };
        for (const [letter, name] of Object.entries(settingNames)) settings[name] = on.includes(letter);
        const home = createHome(settings);
        const programs = [];
        t.after(async () => {
            for (const program of programs) await program.kill();
            home.remove();
        });
        programs.push(await startProgram(home, undefined, folder));
        const rows = documentedRows();
        assert.deepEqual(rows.map(([who]) => who), Object.keys(senders));
        for (const [who, cells] of rows) {
            assert.deepEqual(Object.keys(cells), Object.keys(requests));
            for (const [what, cell] of Object.entries(cells)) tryCell(who, what, cell, on);
        }
    });
}
