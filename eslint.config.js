import js from '@eslint/js';
import globals from 'globals';

export default [
    { ignores: ['build/', 'artefacts/'] },
    js.configs.recommended,
    {
        linterOptions: { reportUnusedDisableDirectives: 'error' },
        rules: {
            eqeqeq: 'error',
            'no-shadow': 'error',
            'no-use-before-define': ['error', { functions: false, classes: false, variables: false }],
            'no-var': 'error',
            'object-shorthand': 'error',
            'prefer-const': 'error',
            'prefer-template': 'error',
        },
    },
    { files: ['web/**/*.js'], languageOptions: { globals: globals.browser } },
    { files: ['web/**/*_worker.js'], languageOptions: { globals: globals.worker } },
    { files: ['tests/**/*.js', 'tests/**/*.mjs', 'bench/**/*.js', 'tools/**/*.js'], languageOptions: { globals: globals.node } },
];
